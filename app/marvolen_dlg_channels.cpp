// The main window's channels: opening and closing them, their network events, the watchdog.

#include "app/marvolen_dlg.h"
#include "config/channel_options.h"
#include "platform/text_field.h"

namespace marvolen {

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

void CMarvolenDlg::PostNetEvent(int code, ChannelInfo* info) {
    PostMessage(WM_NETEVENT, static_cast<WPARAM>(code), reinterpret_cast<LPARAM>(info));
}

void CMarvolenDlg::OnNetEvent(int code, const ChannelInfo& info) {
    // By position, not by the stored channelIndex, which a damaged settings file may have spoilt.
    const int k = ChannelNumber(&info) - 1;
    // Posted by a connection that has been closed since: it must not open the channel again.
    if (!Recorder(k).IsOpen()) return;
    if (code == NETEVENT_CONNECT) {
        Pane(k).SetStatus(PANE_CONNECTED, 0);
        messageLog->AddLogEntry(&info, "Network connect.");
    } else if (code == NETEVENT_CLOSE || code == NETEVENT_ERROR) {
        CloseChannel(k, CloseFlag::Ended);
        SetTimer(static_cast<std::uint32_t>(k), kReconnectMilliseconds);
        messageLog->AddLogEntry(&info,
                                code == NETEVENT_CLOSE ? "Network close." : "Network error.");
    }
}

void CMarvolenDlg::OnTimer(std::uint32_t id) {
    if (id == kWatchdogTimer) return OnWatchdog();
    // A failure is left to the next watchdog tick or network event.
    KillTimer(id);
    if (id < kChannelCount) OpenChannel(static_cast<int>(id));
}

// Every silent channel is restarted, one whose connect attempt is still pending too.
void CMarvolenDlg::OnWatchdog() {
    for (int k = 0; k < kChannelCount; ++k) {
        const ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
        if (Recorder(k).TakeFrameCount() != 0) continue;
        if (FieldText(info.host).empty()) continue;
        messageLog->AddLogEntry(&info, "Unknown Error.");
        CloseChannel(k, CloseFlag::Ordered);
        OpenChannel(k);
        KillTimer(static_cast<std::uint32_t>(k));
    }
}

}  // namespace marvolen
