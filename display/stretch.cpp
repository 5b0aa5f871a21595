// Separable resampling with 8-bit weights, rows first.

#include "display/stretch.h"

#include <algorithm>
#include <new>

namespace marvolen {

bool ScreenImage::Resize(int newWidth, int newHeight) {
    width = std::max(newWidth, 0);
    height = std::max(newHeight, 0);
    try {
        pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        return true;
    } catch (const std::bad_alloc&) {
        pixels.clear();
        width = height = 0;
        return false;
    }
}

bool Stretcher::Stretch(const BottomUpPicture& source, ScreenImage& target) {
    if (!source.pixels || source.width <= 0 || source.height <= 0) return false;
    if (target.width == 0 || target.height == 0) return true;
    const std::size_t samples = static_cast<std::size_t>(source.width) * 3;
    try {
        horizontal.Prepare(source.width, target.width);
        vertical.Prepare(source.height, target.height);
        rows.reserve(static_cast<std::size_t>(vertical.taps));
        blended.resize(samples + kBlendedSlack);
    } catch (const std::bad_alloc&) {
        return false;
    }
    const ColumnTaps columns = horizontal.Taps();
    std::uint32_t* targetRow = target.pixels.data();
    for (int y = 0; y < target.height; ++y, targetRow += target.width) {
        FindRows(source, y);
        kernels.blendRows(rows.data(), rows.size(), samples, blended.data());
        kernels.blendColumns(columns, blended.data(), targetRow);
    }
    return true;
}

// Fills rows with the source rows that make up a target row.
void Stretcher::FindRows(const BottomUpPicture& source, int targetRow) {
    const auto row = static_cast<std::size_t>(targetRow);
    const auto taps = static_cast<std::size_t>(vertical.taps);
    rows.clear();
    for (std::size_t tap = 0; tap < taps; ++tap) {
        const std::uint16_t weight = vertical.weights[row * taps + tap];
        if (weight == 0) continue;
        const auto fromTop = static_cast<std::size_t>(vertical.first[row]) + tap;
        const std::size_t fromBottom = static_cast<std::size_t>(source.height) - 1 - fromTop;
        rows.push_back({source.pixels + fromBottom * source.stride, weight});
    }
}

}  // namespace marvolen
