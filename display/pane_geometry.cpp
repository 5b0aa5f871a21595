#include "display/pane_geometry.h"

#include <algorithm>
#include <cmath>

namespace marvolen {
namespace {

constexpr int kPopupMargin = 5;

int ToDevice(int position, int origin, double devicePixelRatio) {
    return static_cast<int>(std::lround((origin + position) * devicePixelRatio));
}

}  // namespace

PixelRect Intersect(const PixelRect& a, const PixelRect& b) {
    const PixelRect common{std::max(a.left, b.left), std::max(a.top, b.top),
                           std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    return common.Empty() ? PixelRect{} : common;
}

PixelRect InsideFrame(int width, int height) {
    return Intersect({kFrameWidth, kFrameWidth, width - kFrameWidth, height - kFrameWidth},
                     {0, 0, width, height});
}

PixelRect VideoArea(int width, int height) {
    return Intersect({0, kStripHeight, width, height}, InsideFrame(width, height));
}

PixelRect ToDevicePixels(const PixelRect& rect, int originX, int originY, double devicePixelRatio) {
    return {ToDevice(rect.left, originX, devicePixelRatio),
            ToDevice(rect.top, originY, devicePixelRatio),
            ToDevice(rect.right, originX, devicePixelRatio),
            ToDevice(rect.bottom, originY, devicePixelRatio)};
}

PixelRect PlacePopup(const PixelRect& pane, int width, int height, const PixelRect& desktop) {
    PixelRect place;
    if (pane.right + kPopupMargin + width <= desktop.right) {
        place.left = pane.right + kPopupMargin;
    } else if (desktop.left + width + kPopupMargin > pane.left) {
        place.left = desktop.left;
    } else {
        place.left = pane.left - kPopupMargin - width;
    }
    place.right = place.left + width;
    if (pane.top + kPopupMargin + height > desktop.bottom) {
        place.top = desktop.bottom - height - kPopupMargin;
        place.bottom = desktop.bottom;
    } else {
        place.top = pane.top + kPopupMargin;
        place.bottom = place.top + height;
    }
    return place;
}

}  // namespace marvolen
