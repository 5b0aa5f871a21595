#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "app/log_export.h"
#include "app/pane_layout.h"
#include "platform/dialog_layout.h"
#include "playback/playback_dlg.h"
#include "res/resource_ids.h"
#include "res/resources.h"
#include "settings/channel_setting_dlg.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>
#include <bit>

namespace marvolen {
namespace {

constexpr QSize kWindowUnits(618, 437);       // dialog units
constexpr QSize kWantedPaneArea(1408, 1012);  // panes wide enough for their status marks

}  // namespace

CMarvolenDlg::CMarvolenDlg() : paneFrame(new QFrame(this)), channels(*this, *this, *this) {
    setWindowTitle(QStringLiteral("Marvolen"));
    setWindowFlags(Qt::Window);
    setMouseTracking(true);
    AddControl(paneFrame, IDC_PANE_FRAME, QString());
    paneFrame->hide();
    for (int k = 0; k < kChannelCount; ++k) {
        auto* pane = new VideoPane(this);
        AddControl(pane, IDC_FIRST_PANE + k, QStringLiteral("NET.%1").arg(k + 1));
        pane->index = k;
        connect(pane, &VideoPane::clicked, this, [this](VideoPane* by) { SelectPane(*by); });
        panes[static_cast<std::size_t>(k)] = pane;
    }
}

CMarvolenDlg::~CMarvolenDlg() {
    channels.StopAllChannels(CloseFlag::Ordered);
    for (VideoPane* pane : panes) pane->BeginEnd();
}

void CMarvolenDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    const QString about = LoadString(IDS_ABOUT_MENU);
    if (!about.isEmpty()) {
        AppendSystemMenuSeparator();
        AppendSystemMenu(SC_ABOUT, about);
        const auto carryOut = [this](int command) {
            if (command == SC_ABOUT) ShowAbout();
        };
        connect(this, &CDialog::systemCommand, this, carryOut, Qt::QueuedConnection);
    }
    setWindowIcon(LoadIcon(IDR_MAIN_ICON));
    controlPanel = new CControlPanelDlg(this);
    controlPanel->CreateChild();
    ConnectPanel();
    PlaceOnScreen();
    FitPanel();
    LayoutPanel();
    messageLog.emplace(controlPanel->MessageList());
    controlPanel->LoadPageIcons();
    controlPanel->CheckViewButton(ViewMode::Sixteen);
    ChooseView(ViewMode::Sixteen);
    channels.StartAllChannels();
    currentChannel = 0;
    SelectPane(Pane(0));
    for (VideoPane* pane : panes) pane->CreatePopup();
}

// The template's size at least, and as much more as the panes want, where the screen has it.
// In its middle, frame included: left to itself a window manager may put the title bar above it.
void CMarvolenDlg::PlaceOnScreen() {
    const QRect screenArea = screen()->availableGeometry();
    const QSize available = screenArea.size() - kFrameAllowance;
    const QSize wanted =
        kWantedPaneArea + QSize(controlPanel->PanelSize(available.height()).width(), 0);
    resize(MapDialogUnits(kWindowUnits).expandedTo(wanted).boundedTo(available));
    const QSize margin = (screenArea.size() - size() - kFrameAllowance) / 2;
    move(screenArea.topLeft() + QPoint(margin.width(), margin.height()));
}

// Queued: a command is carried out once the click that gave it is over.
void CMarvolenDlg::ConnectPanel() {
    const auto on = [this](auto command, auto action) {
        connect(controlPanel, command, this, action, Qt::QueuedConnection);
    };
    on(&CControlPanelDlg::toggleRecordingRequested, &CMarvolenDlg::ToggleRecording);
    on(&CControlPanelDlg::stopAllRequested, [this] { SetAllRecording(false); });
    on(&CControlPanelDlg::startAllRequested, [this] { SetAllRecording(true); });
    on(&CControlPanelDlg::aboutRequested, &CMarvolenDlg::ShowAbout);
    on(&CControlPanelDlg::settingRequested, &CMarvolenDlg::ShowSetting);
    on(&CControlPanelDlg::playbackRequested, &CMarvolenDlg::ShowPlayback);
    on(&CControlPanelDlg::cleanLogRequested, [this] { messageLog->Clean(); });
    on(&CControlPanelDlg::saveLogRequested, &CMarvolenDlg::SaveLog);
    on(&CControlPanelDlg::turnPageRequested, &CMarvolenDlg::TurnPage);
    on(&CControlPanelDlg::viewRequested, &CMarvolenDlg::ChooseView);
    on(&CControlPanelDlg::enablePopupRequested, [this](bool enabled) {
        if (!enabled) HidePopups();
    });
    on(&CControlPanelDlg::exitRequested, &CMarvolenDlg::Exit);
}

// Whether a dialog is open over this window. Commands posted before it opened may still arrive.
bool CMarvolenDlg::IsCovered() const {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal && modal != this;
}

void CMarvolenDlg::SaveLog() {
    if (!IsCovered()) SaveLogAs(this, messageLog->List());
}

void CMarvolenDlg::Exit() {
    if (!IsCovered()) EndDialog(IDOK);
}

void CMarvolenDlg::ShowAbout() {
    if (!IsCovered()) CAboutDlg(this).DoModal();
}

// The recorders hold the files that are to be played. When the program was asked to end, the window
// is gone by now, and the channels stay closed.
void CMarvolenDlg::ShowPlayback() {
    if (IsCovered()) return;
    HidePopups();
    channels.StopAllChannels(CloseFlag::Ordered);
    {
        CPlaybackDlg dialog(this, currentChannel);
        playback = &dialog;
        dialog.DoModal();
        playback = nullptr;
    }
    if (isVisible()) channels.StartAllChannels();
}

// The channels are closed while their settings change. What was wanted to record still is.
void CMarvolenDlg::ShowSetting() {
    if (IsCovered()) return;
    HidePopups();
    channels.StopAllChannels(CloseFlag::Ordered);
    CChannelSettingDlg dialog(this);
    dialog.SetInitialTab(currentChannel);
    if (dialog.DoModal() == IDOK) g_channelInfo = dialog.Channels();
    if (isVisible()) channels.StartAllChannels();
}

void CMarvolenDlg::CloseFiles() {
    channels.StopAllChannels(CloseFlag::Ordered);
    if (playback) playback->AbandonRender();
}

void CMarvolenDlg::OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NETEVENT:
            return channels.OnNetEvent(static_cast<int>(wParam),
                                       *std::bit_cast<const ChannelInfo*>(lParam));
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
    controlPanel->ShowRecording(channels.IsRecording(pane.index));
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
    const bool on = !channels.IsRecording(currentChannel);
    controlPanel->ShowRecording(on);
    channels.SetRecording(currentChannel, on);
}

void CMarvolenDlg::SetAllRecording(bool on) {
    controlPanel->ShowRecording(on);
    for (int k = 0; k < kChannelCount; ++k) channels.SetRecording(k, on);
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
