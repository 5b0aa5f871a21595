#pragma once

// Where the sixteen panes stand in the pane area, in each of the three views. Plain arithmetic in
// device-independent pixels; divisions truncate, so a few pixels at the right and bottom edge may
// stay free.

#include "app/paging.h"

namespace marvolen {

struct PaneRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PaneRect&) const = default;
};

// View 16: pane k (0..15) among four rows of four.
PaneRect PaneRectOf16(const PaneRect& area, int pane);

// View 4: pane k in its place, two rows of two, on the page that shows it (FirstPaneOfPage).
PaneRect PaneRectOf4(const PaneRect& area, int pane);

// The first of the four panes that page p (1..4) of view 4 shows.
int FirstPaneOfPage(int page);

// The pane beside pane k in a view, by columns (-1, 0, 1) and rows; -1 where the view's page ends.
int NeighbourPane(ViewMode view, int pane, int columns, int rows);

// Where a panel of this width stands in a window of this width: at the right edge.
int PanelLeft(int windowWidth, int panelWidth);

}  // namespace marvolen
