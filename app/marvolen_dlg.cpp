#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "app/log_export.h"
#include "app/pane_layout.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>

namespace marvolen {
namespace {

constexpr QSize kTemplateUnits(618, 437);     // dialog units
constexpr QSize kWantedPaneArea(1408, 1012);  // panes wide enough for their status marks
constexpr QSize kFrameAllowance(16, 48);      // what a window's frame takes of the screen

}  // namespace

CMarvolenDlg::CMarvolenDlg() : paneFrame(new QFrame(this)) {
    setWindowTitle(QStringLiteral("Marvolen"));
    setWindowFlags(Qt::Window);
    setMouseTracking(true);
    AddControl(paneFrame, IDC_PANE_FRAME, QString());
    paneFrame->hide();
    for (int k = 0; k < kChannelCount; ++k) {
        auto* pane = new VideoPane(this);
        AddControl(pane, IDC_FIRST_PANE + k, QStringLiteral("NET.%1").arg(k + 1));
        pane->index = k;
        panes[static_cast<std::size_t>(k)] = pane;
    }
}

CMarvolenDlg::~CMarvolenDlg() {
    StopAllChannels(CloseFlag::Ordered);
    for (VideoPane* pane : panes) pane->BeginEnd();
}

void CMarvolenDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    const QString about = LoadString(IDS_ABOUT_MENU);
    if (!about.isEmpty()) {
        AppendSystemMenuSeparator();
        AppendSystemMenu(SC_ABOUT, about);
    }
    setWindowIcon(LoadIcon(IDR_MAIN_ICON));
    controlPanel = new CControlPanelDlg(this);
    controlPanel->CreateModeless();
    ResizeToScreen();
    FitPanel();
    LayoutPanel();
    messageLog.emplace(controlPanel->MessageList());
    controlPanel->LoadPageIcons();
    controlPanel->CheckViewButton(ViewMode::Sixteen);
    ChooseView(ViewMode::Sixteen);
    StartAllChannels();
    currentChannel = 0;
    SelectPane(Pane(0));
    for (VideoPane* pane : panes) pane->CreatePopup();
}

// The template's size at least, and as much more as the panes want, where the screen has it.
void CMarvolenDlg::ResizeToScreen() {
    const QSize available = screen()->availableSize() - kFrameAllowance;
    const QSize wanted =
        kWantedPaneArea + QSize(controlPanel->PanelSize(available.height()).width(), 0);
    resize(MapDialogUnits(kTemplateUnits).expandedTo(wanted).boundedTo(available));
}

void CMarvolenDlg::OnCommand(WPARAM wParam, LPARAM lParam) {
    const int id = CommandId(wParam);
    const int pane = id - IDC_FIRST_PANE;
    if (pane >= 0 && pane < kChannelCount) {
        if (CommandCode(wParam) == STN_CLICKED) SelectPane(Pane(pane));
    } else if (CommandCode(wParam) == BN_CLICKED) {
        OnPanelCommand(id);
    }
    CDialog::OnCommand(wParam, lParam);
}

// Whether a dialog is open over this window. Commands posted before it opened may still arrive.
bool CMarvolenDlg::IsCovered() const {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal && modal != this;
}

void CMarvolenDlg::OnPanelCommand(int id) {
    const bool opensOrEnds = id == IDC_LOGO || id == IDC_LOG_SAVE || id == IDC_EXIT;
    if (opensOrEnds && IsCovered()) return;
    switch (id) {
        case IDC_RECORD_TOGGLE:
            return ToggleRecording();
        case IDC_STOP_ALL:
            return SetAllRecording(false);
        case IDC_START_ALL:
            return SetAllRecording(true);
        case IDC_LOGO:
            return ShowAbout();
        case IDC_LOG_CLEAN:
            return messageLog->Clean();
        case IDC_LOG_SAVE:
            return SaveLogAs(this, messageLog->List());
        case IDC_PREVIOUS_PAGE:
            return TurnPage(-1);
        case IDC_NEXT_PAGE:
            return TurnPage(+1);
        case IDC_VIEW_1:
            return ChooseView(ViewMode::One);
        case IDC_VIEW_4:
            return ChooseView(ViewMode::Four);
        case IDC_VIEW_16:
            return ChooseView(ViewMode::Sixteen);
        case IDC_ENABLE_POPUP:
            if (!controlPanel->IsPopupEnabled()) HidePopups();
            return;
        case IDC_EXIT:
            return EndDialog(IDOK);
        default:
            return;
    }
}

void CMarvolenDlg::OnSysCommand(int command) {
    if (command == SC_ABOUT && !IsCovered()) ShowAbout();
}

void CMarvolenDlg::ShowAbout() {
    CAboutDlg(this).DoModal();
}

void CMarvolenDlg::OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NETEVENT:
            return OnNetEvent(static_cast<int>(wParam),
                              *reinterpret_cast<const ChannelInfo*>(lParam));
        case WM_POPUPPANE:
            return OnPopupPane(static_cast<int>(wParam));
        default:
            return CDialog::OnMessage(message, wParam, lParam);
    }
}

void CMarvolenDlg::OnPopupPane(int pane) {
    if (!controlPanel->IsPopupEnabled() || pane == popupPane) return;
    popupPane = pane;
    for (VideoPane* each : panes) {
        if (each->index != pane) each->HidePopup();
    }
    if (pane >= 0 && pane < kChannelCount) Pane(pane).ShowPopup();
}

// At once, whether or not pop-ups are enabled: when nothing else would hide one any more.
void CMarvolenDlg::HidePopups() {
    for (VideoPane* pane : panes) pane->HidePopup();
    popupPane = -1;
}

void CMarvolenDlg::SelectPane(VideoPane& pane) {
    controlPanel->ShowRecording((pane.GetStatus() & PANE_RECORDING) != 0);
    // The selected pane alone is a stop of the Tab key; the arrow keys lead to the others.
    for (VideoPane* each : panes) each->setFocusPolicy(each == &pane ? Qt::TabFocus : Qt::NoFocus);
    pane.setFocus();
    pane.SetStatus(PANE_SELECTED, 0);  // the focus comes later while the window isn't active
    currentChannel = pane.index;
    for (VideoPane* other : panes) {
        if (other != &pane) other->SetStatus(0, PANE_SELECTED);
    }
}

void CMarvolenDlg::ToggleRecording() {
    const bool on = (Pane(currentChannel).GetStatus() & PANE_RECORDING) == 0;
    controlPanel->ShowRecording(on);
    SetRecording(currentChannel, on);
}

void CMarvolenDlg::SetAllRecording(bool on) {
    controlPanel->ShowRecording(on);
    for (int k = 0; k < kChannelCount; ++k) SetRecording(k, on);
}

void CMarvolenDlg::SetRecording(int k, bool on) {
    Recorder(k).SetRecording(on);
    Pane(k).SetStatus(on ? PANE_RECORDING : 0, on ? 0 : PANE_RECORDING);
}

void CMarvolenDlg::ChooseView(ViewMode view) {
    paging = PagingOf(view, currentChannel);
    UpdatePaging();
    LayoutView();
    HidePopups();  // its pane may be hidden now
}

void CMarvolenDlg::TurnPage(int step) {
    paging.currentPage += step;
    UpdatePaging();
    if (GetViewMode() == ViewMode::Sixteen) return;
    LayoutView();
    HidePopups();
}

void CMarvolenDlg::UpdatePaging() {
    paging.Clamp();
    controlPanel->ShowPaging(paging);
}

void CMarvolenDlg::mouseMoveEvent(QMouseEvent* event) {
    CDialog::mouseMoveEvent(event);
    PostMessage(WM_POPUPPANE, static_cast<WPARAM>(-1), 0);
}

void CMarvolenDlg::leaveEvent(QEvent* event) {
    CDialog::leaveEvent(event);
    // The window is also left when a window of its own comes up under a pointer that stays.
    if (rect().contains(mapFromGlobal(QCursor::pos()))) return;
    PostMessage(WM_POPUPPANE, static_cast<WPARAM>(-1), 0);
}

void CMarvolenDlg::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
            return SelectNeighbour(-1, 0);
        case Qt::Key_Right:
            return SelectNeighbour(+1, 0);
        case Qt::Key_Up:
            return SelectNeighbour(0, -1);
        case Qt::Key_Down:
            return SelectNeighbour(0, +1);
        case Qt::Key_PageUp:
            return TurnPage(-1);
        case Qt::Key_PageDown:
            return TurnPage(+1);
        default:
            return CDialog::keyPressEvent(event);
    }
}

// From a selected pane that another page hides, to the first pane of the page that is shown.
void CMarvolenDlg::SelectNeighbour(int columns, int rows) {
    int next = NeighbourPane(GetViewMode(), currentChannel, columns, rows);
    if (!Pane(currentChannel).isVisible()) {
        const auto shown = std::find_if(panes.begin(), panes.end(),
                                        [](const VideoPane* pane) { return pane->isVisible(); });
        next = shown == panes.end() ? -1 : (*shown)->index;
    }
    if (next >= 0) SelectPane(Pane(next));
}

}  // namespace marvolen
