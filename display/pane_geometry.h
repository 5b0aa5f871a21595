#pragma once

// Where everything in a pane and its pop-up stands. Plain arithmetic in device-independent pixels.

namespace marvolen {

// A rectangle that includes its left and top edge and excludes its right and bottom one. Empty when
// it has no width or no height.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Empty() const { return right <= left || bottom <= top; }

    bool operator==(const PixelRect&) const = default;
};

// The title strip, as wide as the pane, and the frame around strip and picture.
inline constexpr int kStripHeight = 23;
inline constexpr int kFrameWidth = 2;

// In the strip, whatever the pane's width: the texts' places and the marks' top left corners.
inline constexpr PixelRect kNameRect{2, 2, 102, 18};
inline constexpr PixelRect kTimeRect{102, 2, 237, 18};
inline constexpr int kMarkTop = 2;
inline constexpr int kConnectedMarkLeft = 318;
inline constexpr int kRecordingMarkLeft = 286;

// What both rectangles share; empty when they share nothing.
PixelRect Intersect(const PixelRect& a, const PixelRect& b);

// The inside of a width x height pane's frame.
PixelRect InsideFrame(int width, int height);

// The part of a width x height pane that the picture is stretched over.
PixelRect VideoArea(int width, int height);

// A rectangle of a widget that lies at (originX, originY) in its window, in device pixels of the
// window: every edge goes to its nearest pixel, so that neighbours stay neighbours at any ratio.
PixelRect ToDevicePixels(const PixelRect& rect, int originX, int originY, double devicePixelRatio);

// Where a pane's pop-up goes that wants to be width x height: beside the pane, on the right if
// there is room on the desktop, else on the left; where neither is, at the desktop's left edge. At
// the desktop's bottom it becomes 5 pixels taller.
PixelRect PlacePopup(const PixelRect& pane, int width, int height, const PixelRect& desktop);

}  // namespace marvolen
