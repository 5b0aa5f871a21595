#include "app/pane_layout.h"

namespace marvolen {
namespace {

PaneRect Cell(const PaneRect& area, int column, int row, int cellsPerSide) {
    const int width = area.width / cellsPerSide;
    const int height = area.height / cellsPerSide;
    return {area.left + column * width, area.top + row * height, width, height};
}

}  // namespace

PaneRect PaneRectOf16(const PaneRect& area, int pane) { return Cell(area, pane % 4, pane / 4, 4); }

PaneRect PaneRectOf4(const PaneRect& area, int pane) {
    const int place = pane % 4;
    return Cell(area, place % 2, place / 2, 2);
}

int FirstPaneOfPage(int page) { return 4 * (page - 1); }

int PanelLeft(int windowWidth, int panelWidth) { return windowWidth - panelWidth; }

}  // namespace marvolen
