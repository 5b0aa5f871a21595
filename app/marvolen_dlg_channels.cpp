// What the main window does for its channels: panes, log, timers, and their events' way through the
// event loop.

#include "app/marvolen_dlg.h"
#include "config/channel_options.h"
#include "platform/text_field.h"

#include <bit>

namespace marvolen {

bool CMarvolenDlg::ReopenPane(int k, const ChannelInfo& info) {
    VideoPane& pane = Pane(k);
    pane.Close();
    return pane.Open(FieldText(info.netName), RateOptionRow(info.rateIndex).paneParam);
}

void CMarvolenDlg::ShowConnected(int k, bool connected) {
    Pane(k).SetStatus(connected ? PANE_CONNECTED : 0, connected ? 0 : PANE_CONNECTED);
}

void CMarvolenDlg::ShowRecording(int k, bool recording) {
    Pane(k).SetStatus(recording ? PANE_RECORDING : 0, recording ? 0 : PANE_RECORDING);
}

void CMarvolenDlg::ShowTrouble(int k, const std::string& text) {
    Pane(k).SetTrouble(QString::fromStdString(text));
}

void CMarvolenDlg::AddLogEntry(const ChannelInfo& info, std::string_view message) {
    messageLog->AddLogEntry(&info, message);
}

void CMarvolenDlg::SetChannelTimer(std::uint32_t id, std::uint32_t milliseconds) {
    SetTimer(id, milliseconds);
}

void CMarvolenDlg::KillChannelTimer(std::uint32_t id) {
    KillTimer(id);
}

void CMarvolenDlg::OnTimer(std::uint32_t id) {
    channels.OnTimer(id);
}

void CMarvolenDlg::PostNetEvent(int code, ChannelInfo* info) {
    PostMessage(WM_NETEVENT, static_cast<WPARAM>(code), std::bit_cast<LPARAM>(info));
}

}  // namespace marvolen
