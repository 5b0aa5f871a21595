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

void CMarvolenDlg::changeEvent(QEvent* event) {
    CDialog::changeEvent(event);
    if (!controlPanel || !messageLog) return;
    switch (event->type()) {
        case QEvent::FontChange:         // may want another panel
        case QEvent::StyleChange:        // likewise
        case QEvent::WindowStateChange:  // was perhaps resized while minimised
            if (isMinimized()) return;
            LayoutPanel();
            LayoutView();
            return;
        case QEvent::ActivationChange:
            if (!isActiveWindow()) HidePopups();
            return;
        default:
            return;
    }
}

void CMarvolenDlg::FitPanel() {
    controlPanel->resize(controlPanel->PanelSize(height()));
    setMinimumSize(controlPanel->width() + kSmallestPaneArea,
                   controlPanel->minimumSizeHint().height());
}

void CMarvolenDlg::LayoutPanel() {
    FitPanel();
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
    // Of its own the toolkit gives the focus of a pane that is hidden to the next control, "Start".
    const bool paneHadFocus = hasFocus() || Pane(currentChannel).hasFocus();
    if (paneHadFocus) setFocus();
    switch (GetViewMode()) {
        case ViewMode::One:
            Layout1(paging.currentPage - 1);
            break;
        case ViewMode::Four:
            Layout4(paging.currentPage);
            break;
        case ViewMode::Sixteen:
            Layout16();
            break;
        case ViewMode::None:
            break;
    }
    SettleFocus(paneHadFocus);
}

// The window itself stands in for the selected pane while a page hides it.
void CMarvolenDlg::SettleFocus(bool paneHadFocus) {
    VideoPane& selected = Pane(currentChannel);
    const bool hidden = selected.isHidden();
    setFocusPolicy(hidden ? Qt::TabFocus : Qt::NoFocus);
    if (paneHadFocus && !hidden) selected.setFocus();
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
