#include "app/pane_layout.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(PaneLayout, SixteenFillTheAreaRowByRow) {
    const PaneRect area{10, 20, 400, 200};
    EXPECT_EQ(PaneRectOf16(area, 0), (PaneRect{10, 20, 100, 50}));
    EXPECT_EQ(PaneRectOf16(area, 3), (PaneRect{310, 20, 100, 50}));
    EXPECT_EQ(PaneRectOf16(area, 4), (PaneRect{10, 70, 100, 50}));
    EXPECT_EQ(PaneRectOf16(area, 15), (PaneRect{310, 170, 100, 50}));
}

TEST(PaneLayout, DivisionsTruncate) {
    const PaneRect area{0, 0, 403, 203};
    EXPECT_EQ(PaneRectOf16(area, 15), (PaneRect{300, 150, 100, 50}));
    EXPECT_EQ(PaneRectOf16({0, 0, 3, 3}, 15), (PaneRect{0, 0, 0, 0}));
}

}  // namespace
}  // namespace marvolen
