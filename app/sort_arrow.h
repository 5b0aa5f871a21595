#pragma once

// The arrow that marks the sorted column in a list's header. Pure; any thread.

#include <vector>

namespace marvolen {

struct ArrowPixel {
    int x;
    int y;
    bool light;  // of the light pen, else of the dark one

    bool operator==(const ArrowPixel&) const = default;
};

// The pixels of the arrow in a header item of this size, later ones over earlier ones: a triangle
// near the item's right edge, that points up for ascending and down for descending, with sides of
// one pixel. Some may lie outside of an item that is too small for it.
std::vector<ArrowPixel> SortArrow(int width, int height, bool ascending);

// Height of an item's margins, by which the label is inset; the arrow takes three of them in width.
constexpr int HeaderMargin(int height) {
    return height / 4;
}

}  // namespace marvolen
