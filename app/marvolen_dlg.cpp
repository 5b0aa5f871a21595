#include "app/marvolen_dlg.h"

#include "app/about_dlg.h"
#include "app/pane_layout.h"
#include "config/channel_options.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QResizeEvent>
#include <QScreen>

namespace marvolen {
namespace {

constexpr QSize kInitialSize(1408, 1012);  // wide enough for the status marks of every pane
constexpr QSize kFrameAllowance(16, 48);   // what a window's frame takes of the screen
constexpr QSize kSmallestSize(320, 240);

}  // namespace

CMarvolenDlg::CMarvolenDlg() : paneFrame(new QFrame(this)) {
    setWindowTitle(QStringLiteral("Marvolen"));
    setWindowFlags(Qt::Window);
    setMinimumSize(kSmallestSize);
    resize(kInitialSize.boundedTo(screen()->availableSize() - kFrameAllowance));
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
    StopAllChannels();
    for (VideoPane* pane : panes) pane->BeginEnd();
}

void CMarvolenDlg::OnInitDialog() {
    const QString about = LoadString(IDS_ABOUT_MENU);
    if (!about.isEmpty()) {
        AppendSystemMenuSeparator();
        AppendSystemMenu(SC_ABOUT, about);
    }
    setWindowIcon(LoadIcon(IDR_MAIN_ICON));
    LayoutPanel();
    Layout16();
    StartAllChannels();
    currentChannel = 0;
    SelectPane(Pane(0));
    for (VideoPane* pane : panes) pane->CreatePopup();
}

bool CMarvolenDlg::OpenChannel(int k) {
    ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
    VideoPane& pane = Pane(k);
    const std::uint32_t formerStatus = pane.GetStatus();
    pane.Close();
    if (!pane.Open(FieldText(info.netName), RateOptionRow(info.rateIndex).paneParam)) return false;
    if (FieldText(info.host).empty()) return true;
    ChannelRecorder& recorder = Recorder(k);
    if (!recorder.Open(&info, &pane, this)) return false;
    recorder.Connect();  // a failure is the watchdog's
    if (formerStatus & PANE_RECORDING) recorder.SetRecording(true);
    return true;
}

void CMarvolenDlg::CloseChannel(int k, CloseFlag flag) {
    Recorder(k).Close(flag);
    Pane(k).SetStatus(0, PANE_CONNECTED);  // a closed connection reports nothing any more
}

void CMarvolenDlg::StartAllChannels() {
    SetTimer(kWatchdogTimer, kWatchdogMilliseconds);
    for (int k = 0; k < kChannelCount; ++k) {
        if (!OpenChannel(k)) StopAllChannels(CloseFlag::Ended);
    }
}

void CMarvolenDlg::StopAllChannels(CloseFlag flag) {
    KillTimer(kWatchdogTimer);
    for (int k = 0; k < kChannelCount; ++k) {
        if (Recorder(k).IsOpen()) CloseChannel(k, flag);
        KillTimer(static_cast<std::uint32_t>(k));
    }
}

void CMarvolenDlg::SelectPane(VideoPane& pane) {
    // The selected pane alone is a stop of the Tab key.
    for (VideoPane* each : panes) each->setFocusPolicy(each == &pane ? Qt::TabFocus : Qt::NoFocus);
    pane.setFocus();
    pane.SetStatus(PANE_SELECTED, 0);  // the focus comes later while the window isn't shown yet
    currentChannel = pane.index;
    for (VideoPane* other : panes) {
        if (other != &pane) other->SetStatus(0, PANE_SELECTED);
    }
}

void CMarvolenDlg::LayoutPanel() {
    paneFrame->setGeometry(rect());
}

void CMarvolenDlg::Layout16() {
    const QRect frame = paneFrame->geometry();
    const PaneRect area{frame.left(), frame.top(), frame.width(), frame.height()};
    for (VideoPane* pane : panes) {
        const PaneRect cell = PaneRectOf16(area, pane->index);
        pane->setGeometry(cell.left, cell.top, cell.width, cell.height);
        pane->show();
    }
}

void CMarvolenDlg::OnCommand(WPARAM wParam, LPARAM lParam) {
    const int pane = CommandId(wParam) - IDC_FIRST_PANE;
    if (pane >= 0 && pane < kChannelCount) {
        if (CommandCode(wParam) == STN_CLICKED) SelectPane(Pane(pane));
        return;
    }
    CDialog::OnCommand(wParam, lParam);
}

void CMarvolenDlg::OnSysCommand(int command) {
    if (command == SC_ABOUT) CAboutDlg(this).DoModal();
}

void CMarvolenDlg::OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NETEVENT) {
        OnNetEvent(static_cast<int>(wParam), *reinterpret_cast<const ChannelInfo*>(lParam));
    } else {
        CDialog::OnMessage(message, wParam, lParam);
    }
}

void CMarvolenDlg::OnNetEvent(int code, const ChannelInfo& info) {
    // By position, not by the stored channelIndex, which a damaged settings file may have spoilt.
    const int k = ChannelNumber(&info) - 1;
    if (code == NETEVENT_CONNECT) {
        Pane(k).SetStatus(PANE_CONNECTED, 0);
    } else if (code == NETEVENT_CLOSE || code == NETEVENT_ERROR) {
        CloseChannel(k, CloseFlag::Ended);
        SetTimer(static_cast<std::uint32_t>(k), kReconnectMilliseconds);
    }
}

void CMarvolenDlg::OnTimer(std::uint32_t id) {
    if (id == kWatchdogTimer) {
        OnWatchdog();
        return;
    }
    // A failure is left to the next watchdog tick or network event.
    KillTimer(id);
    if (id < kChannelCount) OpenChannel(static_cast<int>(id));
}

// Every silent channel is restarted, one whose connect attempt is still pending too.
void CMarvolenDlg::OnWatchdog() {
    for (int k = 0; k < kChannelCount; ++k) {
        if (Recorder(k).TakeFrameCount() != 0) continue;
        if (FieldText(g_channelInfo[static_cast<std::size_t>(k)].host).empty()) continue;
        CloseChannel(k, CloseFlag::Ordered);
        OpenChannel(k);
        KillTimer(static_cast<std::uint32_t>(k));
    }
}

void CMarvolenDlg::resizeEvent(QResizeEvent* event) {
    CDialog::resizeEvent(event);
    if (isMinimized()) return;
    LayoutPanel();
    Layout16();
}

}  // namespace marvolen
