#include "app/pane_layout.h"

#include "app/paging.h"

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

TEST(PaneLayout, NeighboursEndWithThePage) {
    EXPECT_EQ(NeighbourPane(ViewMode::Sixteen, 5, 1, 0), 6);
    EXPECT_EQ(NeighbourPane(ViewMode::Sixteen, 5, 0, -1), 1);
    EXPECT_EQ(NeighbourPane(ViewMode::Sixteen, 7, 1, 0), -1);
    EXPECT_EQ(NeighbourPane(ViewMode::Sixteen, 12, 0, 1), -1);
    EXPECT_EQ(NeighbourPane(ViewMode::Four, 9, 0, 1), 11);
    EXPECT_EQ(NeighbourPane(ViewMode::Four, 9, 1, 0), -1);
    EXPECT_EQ(NeighbourPane(ViewMode::Four, 8, 0, -1), -1);
    EXPECT_EQ(NeighbourPane(ViewMode::One, 5, 1, 0), -1);
}

TEST(Paging, AViewBeginsWithThePageOfTheSelectedChannel) {
    EXPECT_EQ(PagingOf(ViewMode::Sixteen, 9), (Paging{1, 1}));
    EXPECT_EQ(PagingOf(ViewMode::Four, 9), (Paging{4, 3}));
    EXPECT_EQ(PagingOf(ViewMode::Four, 0), (Paging{4, 1}));
    EXPECT_EQ(PagingOf(ViewMode::Four, 15), (Paging{4, 4}));
    EXPECT_EQ(PagingOf(ViewMode::One, 15), (Paging{16, 16}));
    EXPECT_EQ(PagingOf(ViewMode::One, 9).Text(), "10/16");
}

TEST(Paging, EndsAtTheFirstAndLastPage) {
    Paging paging{4, 1};
    EXPECT_FALSE(paging.HasPrevious());
    EXPECT_TRUE(paging.HasNext());
    --paging.currentPage;
    paging.Clamp();
    EXPECT_EQ(paging.currentPage, 1);
    paging.currentPage = 5;
    paging.Clamp();
    EXPECT_EQ(paging, (Paging{4, 4}));
    EXPECT_TRUE(paging.HasPrevious());
    EXPECT_FALSE(paging.HasNext());
    EXPECT_FALSE(Paging{}.HasPrevious() || Paging{}.HasNext());
}

}  // namespace
}  // namespace marvolen
