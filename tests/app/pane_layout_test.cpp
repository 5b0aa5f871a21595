#include "app/pane_layout.h"

#include "app/paging.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(PaneLayout, SixteenFillTheAreaRowByRow) {
    const PaneRect area{10, 20, 403, 203};
    EXPECT_EQ(PaneRectOf16(area, 0), (PaneRect{10, 20, 100, 50}));
    EXPECT_EQ(PaneRectOf16(area, 4), (PaneRect{10, 70, 100, 50}));
    EXPECT_EQ(PaneRectOf16(area, 15), (PaneRect{310, 170, 100, 50}));
}

TEST(PaneLayout, NeighboursEndWithThePage) {
    using enum ViewMode;
    constexpr struct {
        ViewMode view;
        int pane, columns, rows, neighbour;
    } kSteps[] = {{Sixteen, 5, 1, 0, 6},   {Sixteen, 5, 0, -1, 1}, {Sixteen, 7, 1, 0, -1},
                  {Sixteen, 12, 0, 1, -1}, {Four, 9, 0, 1, 11},    {Four, 9, 1, 0, -1},
                  {Four, 8, 0, -1, -1},    {One, 5, 1, 0, -1}};
    for (const auto& [view, pane, columns, rows, neighbour] : kSteps) {
        EXPECT_EQ(NeighbourPane(view, pane, columns, rows), neighbour) << pane;
    }
}

TEST(Paging, BeginsWithThePageOfTheSelectedChannelAndEndsAtTheLast) {
    EXPECT_EQ(PagingOf(ViewMode::Sixteen, 9), (Paging{1, 1}));
    EXPECT_EQ(PagingOf(ViewMode::Four, 9), (Paging{4, 3}));
    EXPECT_EQ(PagingOf(ViewMode::One, 15), (Paging{16, 16}));
    for (const int page : {0, 1, 4, 5}) {
        Paging paging{4, page};
        paging.Clamp();
        EXPECT_EQ(paging.currentPage, page < 2 ? 1 : 4);
        EXPECT_EQ(paging.HasPrevious(), page >= 2);
        EXPECT_EQ(paging.HasNext(), page < 2);
    }
    EXPECT_FALSE(Paging{}.HasPrevious() || Paging{}.HasNext());
}

}  // namespace
}  // namespace marvolen
