#pragma once

// Where the sixteen panes stand in the pane area, in each of the three views. Plain arithmetic in
// device-independent pixels; divisions truncate, so a few pixels at the right and bottom edge may
// stay free.

namespace marvolen {

struct PaneRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PaneRect&) const = default;
};

// Pane k (0..15) among four rows of four.
PaneRect PaneRectOf16(const PaneRect& area, int pane);

}  // namespace marvolen
