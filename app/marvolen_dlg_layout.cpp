// The main window's layout: the panel at the right edge, the panes of the view in the rest.

#include "app/marvolen_dlg.h"
#include "app/pane_layout.h"

#include <QResizeEvent>

#include <algorithm>

namespace marvolen {
namespace {

constexpr int kSmallestPaneArea = 320;

}  // namespace

void CMarvolenDlg::resizeEvent(QResizeEvent* event) {
    CDialog::resizeEvent(event);
    if (isMinimized() || !controlPanel) return;
    LayoutPanel();
    LayoutView();
}

// Another font or style may want another panel.
void CMarvolenDlg::changeEvent(QEvent* event) {
    CDialog::changeEvent(event);
    const bool fits = event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange;
    if (fits || !controlPanel || !messageLog) return;
    FitPanel();
    LayoutPanel();
    LayoutView();
}

void CMarvolenDlg::FitPanel() {
    const QSize size = controlPanel->PanelSize(height());
    controlPanel->resize(size);
    setMinimumSize(size.width() + kSmallestPaneArea, size.height());
}

void CMarvolenDlg::LayoutPanel() {
    const int left = PanelLeft(width(), controlPanel->width());
    controlPanel->move(left, controlPanel->y());
    paneFrame->setGeometry(0, 0, left, height());
}

PaneRect CMarvolenDlg::PaneArea() const {
    const QRect frame = paneFrame->geometry();
    return {frame.left(), frame.top(), frame.width(), frame.height()};
}

void CMarvolenDlg::PlacePane(VideoPane& pane, const PaneRect& rect) {
    pane.setGeometry(rect.left, rect.top, rect.width, rect.height);
    pane.show();
}

void CMarvolenDlg::LayoutView() {
    switch (GetViewMode()) {
        case ViewMode::One:
            return Layout1(paging.currentPage - 1);
        case ViewMode::Four:
            return Layout4(paging.currentPage);
        case ViewMode::Sixteen:
            return Layout16();
        case ViewMode::None:
            return;
    }
}

void CMarvolenDlg::Layout1(int k) {
    for (VideoPane* pane : panes) {
        if (pane->index != k) pane->hide();
    }
    PlacePane(Pane(k), PaneArea());
}

void CMarvolenDlg::Layout4(int page) {
    const int first = FirstPaneOfPage(page);
    const auto isShown = [first](int k) { return k >= first && k < first + 4; };
    for (VideoPane* pane : panes) {
        if (!isShown(pane->index)) pane->hide();
    }
    for (int k = first; k < first + 4; ++k) PlacePane(Pane(k), PaneRectOf4(PaneArea(), k));
}

void CMarvolenDlg::Layout16() {
    for (VideoPane* pane : panes) PlacePane(*pane, PaneRectOf16(PaneArea(), pane->index));
}

}  // namespace marvolen
