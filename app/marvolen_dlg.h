#pragma once

// The main window: sixteen live panes, and for each the channel that feeds it.
//
// It opens the channels from the channel table, shows which are connected, and opens a channel anew
// 5000 ms after its connection closed or failed. A watchdog restarts every channel that delivered
// no frame for 30000 ms. Interface thread only.

#include "config/channel_info.h"
#include "display/video_pane.h"
#include "platform/dialog.h"
#include "record/channel_recorder.h"

#include <QFrame>

#include <array>

namespace marvolen {

inline constexpr std::uint32_t kReconnectMilliseconds = 5000;

// The watchdog's timer, beside the reconnect timers 0 to 15, and its period.
inline constexpr std::uint32_t kWatchdogTimer = 17;
inline constexpr std::uint32_t kWatchdogMilliseconds = 30000;

class CMarvolenDlg final : public CDialog {
    Q_OBJECT

public:
    CMarvolenDlg();
    ~CMarvolenDlg() override;

    // Opens pane k with its channel's name and, when the channel has a host, its recorder, and
    // connects. A channel that was recording goes on recording. False when the pane or the recorder
    // can't be opened.
    bool OpenChannel(int k);

    // Ends channel k's connection and closes its record file. The pane stays open.
    void CloseChannel(int k, CloseFlag flag);

    // Starts the watchdog and opens every channel. A channel that can't be opened closes those
    // opened before it and stops the watchdog; the ones after it are opened all the same.
    void StartAllChannels();

    // Stops the watchdog, closes every channel and forgets every reconnect that is due.
    void StopAllChannels(CloseFlag flag);

    // Makes this pane the selected one: gives it the focus and takes the red frame off the others.
    void SelectPane(VideoPane& pane);

    // Arranges all sixteen panes in four rows of four.
    void Layout16();

    ChannelRecorder& Recorder(int k) { return recorders[static_cast<std::size_t>(k)]; }
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
    void OnWatchdog();
    void LayoutPanel();

    QFrame* const paneFrame;                        // marks the pane area, never seen
    std::array<VideoPane*, kChannelCount> panes{};  // children of this window
    std::array<ChannelRecorder, kChannelCount> recorders;
    int currentChannel = 0;  // the selected pane
};

}  // namespace marvolen
