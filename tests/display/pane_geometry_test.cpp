#include "display/pane_geometry.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(PaneGeometry, VideoAreaLiesBelowTheStripInsideTheFrame) {
    EXPECT_EQ(VideoArea(240, 100), (PixelRect{2, 23, 238, 98}));
    EXPECT_EQ(VideoArea(5, 26), (PixelRect{2, 23, 3, 24}));
    EXPECT_EQ(VideoArea(4, 100), PixelRect{});
    EXPECT_EQ(VideoArea(100, 25), PixelRect{});
}

TEST(PaneGeometry, DevicePixelsOfNeighboursMeet) {
    EXPECT_EQ(ToDevicePixels({2, 23, 238, 98}, 1, 2, 2.0), (PixelRect{6, 50, 478, 200}));
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.25}) {
        for (int origin = 0; origin < 9; ++origin) {
            const PixelRect left = ToDevicePixels({0, 0, 7, 5}, origin, 0, ratio);
            const PixelRect right = ToDevicePixels({0, 0, 3, 5}, origin + 7, 0, ratio);
            EXPECT_EQ(left.right, right.left) << ratio << " at " << origin;
            EXPECT_NEAR(left.Width(), 7 * ratio, 1);
        }
    }
}

TEST(PopupPlacement, BesideThePaneWhereThereIsRoom) {
    const PixelRect first{0, 0, 1000, 800};
    const PixelRect second{1000, -200, 1800, 400};  // doesn't begin at zero
    const struct {
        PixelRect pane;
        PixelRect desktop;
        PixelRect place;
    } cases[] = {
        {{100, 100, 300, 250}, first, {305, 105, 585, 195}},
        {{515, 100, 715, 250}, first, {720, 105, 1000, 195}},  // just room on the right
        {{516, 100, 716, 250}, first, {231, 105, 511, 195}},
        {{285, 100, 716, 250}, first, {0, 105, 280, 195}},  // just room on the left
        {{284, 100, 716, 250}, first, {0, 105, 280, 195}},
        {{-50, 0, 1000, 800}, first, {0, 5, 280, 95}},
        {{100, 705, 300, 790}, first, {305, 710, 585, 800}},  // just room below
        {{100, 706, 300, 790}, first, {305, 705, 585, 800}},
        {{1500, 0, 1750, 100}, second, {1215, 5, 1495, 95}},
        {{1010, 0, 1790, 100}, second, {1000, 5, 1280, 95}},
    };
    for (const auto& [pane, desktop, place] : cases) {
        EXPECT_EQ(PlacePopup(pane, 280, 90, desktop), place) << pane.left;
    }
}

}  // namespace
}  // namespace marvolen
