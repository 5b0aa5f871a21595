#include "app/pane_layout.h"

namespace marvolen {
namespace {

PaneRect Cell(const PaneRect& area, int column, int row, int cellsPerSide) {
    const int width = area.width / cellsPerSide;
    const int height = area.height / cellsPerSide;
    return {area.left + column * width, area.top + row * height, width, height};
}

}  // namespace

PaneRect PaneRectOf16(const PaneRect& area, int pane) {
    return Cell(area, pane % 4, pane / 4, 4);
}

PaneRect PaneRectOf4(const PaneRect& area, int pane) {
    const int place = pane % 4;
    return Cell(area, place % 2, place / 2, 2);
}

int FirstPaneOfPage(int page) {
    return 4 * (page - 1);
}

int NeighbourPane(ViewMode view, int pane, int columns, int rows) {
    if (view != ViewMode::Four && view != ViewMode::Sixteen) return -1;
    const int side = view == ViewMode::Four ? 2 : 4;
    const int place = pane % (side * side);
    const int column = place % side + columns;
    const int row = place / side + rows;
    if (column < 0 || column >= side || row < 0 || row >= side) return -1;
    return pane - place + row * side + column;
}

int PanelLeft(int windowWidth, int panelWidth) {
    return windowWidth - panelWidth;
}

}  // namespace marvolen
