#include "app/sort_arrow.h"

#include <algorithm>
#include <cstdlib>

namespace marvolen {
namespace {

struct Point {
    int x;
    int y;
};

// The line's pixels without its last, so that lines which meet share no pixel.
void AppendLine(std::vector<ArrowPixel>& pixels, Point from, Point to, bool light) {
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    const int length = std::max(std::abs(dx), std::abs(dy));
    const auto part = [length](int whole, int step) {
        const int doubled = 2 * whole * step;
        return (doubled + (doubled < 0 ? -length : length)) / (2 * length);
    };
    for (int step = 0; step < length; ++step) {
        pixels.push_back({from.x + part(dx, step), from.y + part(dy, step), light});
    }
}

}  // namespace

std::vector<ArrowPixel> SortArrow(int width, int height, bool ascending) {
    const int off = HeaderMargin(height);
    const int right = width;
    const int bottom = height;
    std::vector<ArrowPixel> pixels;
    if (ascending) {
        const Point corner{right - off, bottom - off - 1};
        AppendLine(pixels, {right - 2 * off, off}, corner, true);
        AppendLine(pixels, corner, {right - 3 * off - 2, bottom - off - 1}, true);
        AppendLine(pixels, {right - 3 * off - 1, bottom - off - 1}, {right - 2 * off, off - 1},
                   false);
    } else {
        const Point corner{right - 3 * off - 1, off};
        AppendLine(pixels, {right - off - 1, off}, {right - 2 * off - 1, bottom - off}, true);
        AppendLine(pixels, {right - 2 * off - 2, bottom - off}, corner, false);
        AppendLine(pixels, corner, {right - off - 1, off}, false);
    }
    return pixels;
}

}  // namespace marvolen
