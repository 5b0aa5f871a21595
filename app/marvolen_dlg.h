#pragma once

// The main window: sixteen live panes, and for each the channel that feeds it.
//
// It opens the channels from the channel table, shows which are connected, and opens a channel anew
// 5000 ms after its connection closed or failed. Interface thread only.

#include "config/channel_info.h"
#include "display/video_pane.h"
#include "net/net_channel.h"
#include "platform/dialog.h"

#include <QFrame>

#include <array>

namespace marvolen {

inline constexpr std::uint32_t kReconnectMilliseconds = 5000;

class CMarvolenDlg final : public CDialog {
    Q_OBJECT

public:
    CMarvolenDlg();
    ~CMarvolenDlg() override;

    // Opens pane k with its channel's name and, when the channel has a host, connects the channel.
    // False when the pane can't be opened.
    bool OpenChannel(int k);

    // Ends channel k's connection. The pane stays open.
    void CloseChannel(int k);

    // Opens every channel. A channel that can't be opened closes those opened before it; the ones
    // after it are opened all the same.
    void StartAllChannels();

    // Closes every channel and forgets every reconnect that is due.
    void StopAllChannels();

    // Makes this pane the selected one: gives it the focus and takes the red frame off the others.
    void SelectPane(VideoPane& pane);

    // Arranges all sixteen panes in four rows of four.
    void Layout16();

    VideoPane& Pane(int k) { return *panes[static_cast<std::size_t>(k)]; }
    int CurrentChannel() const { return currentChannel; }

protected:
    void OnInitDialog() override;
    void OnCommand(WPARAM wParam, LPARAM lParam) override;
    void OnSysCommand(int command) override;
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override;
    void OnTimer(std::uint32_t id) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void OnNetEvent(int code, const ChannelInfo& info);
    void LayoutPanel();

    QFrame* const paneFrame;                        // marks the pane area, never seen
    std::array<VideoPane*, kChannelCount> panes{};  // children of this window
    std::array<NetChannel, kChannelCount> channels;
    int currentChannel = 0;  // the selected pane
};

}  // namespace marvolen
