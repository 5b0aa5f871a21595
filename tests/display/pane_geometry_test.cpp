#include "display/pane_geometry.h"

#include <gtest/gtest.h>

namespace marvolen {

static void PrintTo(const PixelRect& rect, std::ostream* out) {
    *out << '(' << rect.left << ", " << rect.top << ")-(" << rect.right << ", " << rect.bottom
         << ')';
}

namespace {

TEST(PaneGeometry, VideoAreaLiesBelowTheStripInsideTheFrame) {
    EXPECT_EQ(VideoArea(240, 100), (PixelRect{2, 23, 238, 98}));
    EXPECT_EQ(VideoArea(240, 100).Height(), 75);
    EXPECT_EQ(VideoArea(5, 26), (PixelRect{2, 23, 3, 24}));
    for (const auto& [width, height] : {std::pair{4, 100}, {100, 25}, {1, 1}, {0, 0}}) {
        EXPECT_EQ(VideoArea(width, height), PixelRect{}) << width << " x " << height;
    }
}

TEST(PaneGeometry, DevicePixelsOfNeighboursMeet) {
    EXPECT_EQ(ToDevicePixels({2, 23, 238, 98}, 0, 0, 2.0), (PixelRect{4, 46, 476, 196}));
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.25}) {
        for (int origin = 0; origin < 9; ++origin) {
            const PixelRect left = ToDevicePixels({0, 0, 7, 5}, origin, 0, ratio);
            const PixelRect right = ToDevicePixels({0, 0, 3, 5}, origin + 7, 0, ratio);
            EXPECT_EQ(left.right, right.left) << ratio << " at " << origin;
            EXPECT_NEAR(left.Width(), 7 * ratio, 1);
        }
    }
}

constexpr PixelRect kDesktop{0, 0, 1000, 800};
constexpr int kWidth = 280;
constexpr int kHeight = 90;

PixelRect Place(int left, int top, int right, int bottom) {
    return PlacePopup({left, top, right, bottom}, kWidth, kHeight, kDesktop);
}

TEST(PopupPlacement, GoesRightOfThePaneWhereThereIsRoom) {
    EXPECT_EQ(Place(100, 100, 300, 250), (PixelRect{305, 105, 585, 195}));
    EXPECT_EQ(Place(515, 100, 715, 250), (PixelRect{720, 105, 1000, 195}));  // just so
}

TEST(PopupPlacement, GoesLeftAtTheRightEdge) {
    EXPECT_EQ(Place(516, 100, 716, 250), (PixelRect{231, 105, 511, 195}));
    EXPECT_EQ(Place(285, 100, 716, 250), (PixelRect{0, 105, 280, 195}));  // just so
}

TEST(PopupPlacement, GoesToTheEdgeWhereNeitherSideHasRoom) {
    EXPECT_EQ(Place(284, 100, 716, 250), (PixelRect{0, 105, 280, 195}));
    EXPECT_EQ(Place(0, 0, 1000, 800), (PixelRect{0, 5, 280, 95}));
    EXPECT_EQ(Place(-50, 0, 1000, 800), (PixelRect{0, 5, 280, 95}));
}

TEST(PopupPlacement, EndsAtTheDesktopsBottomFivePixelsTaller) {
    EXPECT_EQ(Place(100, 705, 300, 790), (PixelRect{305, 710, 585, 800}));  // just fits
    EXPECT_EQ(Place(100, 706, 300, 790), (PixelRect{305, 705, 585, 800}));
    EXPECT_EQ(Place(700, 790, 900, 900), (PixelRect{415, 705, 695, 800}));
}

TEST(PopupPlacement, KeepsToADesktopThatDoesNotBeginAtZero) {
    const PixelRect second{1000, -200, 1800, 400};
    EXPECT_EQ(PlacePopup({1500, 0, 1750, 100}, kWidth, kHeight, second),
              (PixelRect{1215, 5, 1495, 95}));
    EXPECT_EQ(PlacePopup({1010, 0, 1790, 100}, kWidth, kHeight, second),
              (PixelRect{1000, 5, 1280, 95}));
}

}  // namespace
}  // namespace marvolen
