#pragma once

// The main window: sixteen live panes on the left, the control panel along the right edge.
//
// It opens the channels from the channel table, shows which are connected, logs what happens to
// them, and opens a channel anew 5000 ms after its connection closed or failed. A watchdog restarts
// every channel that delivered no frame for 30000 ms. It arranges the panes in views of one, four
// or sixteen, with pages, and switches recording. Interface thread only.

#include "app/control_panel_dlg.h"
#include "app/message_log.h"
#include "app/paging.h"
#include "app/pane_layout.h"
#include "config/channel_info.h"
#include "display/video_pane.h"
#include "net/net_event_owner.h"
#include "platform/dialog.h"
#include "record/channel_recorder.h"

#include <QFrame>

#include <array>
#include <optional>

namespace marvolen {

inline constexpr std::uint32_t kReconnectMilliseconds = 5000;

// The watchdog's timer, beside the reconnect timers 0 to 15, and its period.
inline constexpr std::uint32_t kWatchdogTimer = 17;
inline constexpr std::uint32_t kWatchdogMilliseconds = 30000;

class CMarvolenDlg final : public CDialog, private NetEventOwner {
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

    // Makes this pane the selected one: "Start" acts on its channel, it has the focus and the only
    // red frame.
    void SelectPane(VideoPane& pane);

    // Brings the page into the view's range, and the page text and buttons up to date.
    void UpdatePaging();

    // Arrange the panes: pane k alone, the four of a page (1 to 4), or all sixteen.
    void Layout1(int k);
    void Layout4(int page);
    void Layout16();

    // Moves the control panel to the right edge and gives the rest to the panes.
    void LayoutPanel();

    // The view chosen in the control panel.
    ViewMode GetViewMode() const { return controlPanel->GetViewMode(); }

    VideoPane& Pane(int k) { return *panes[static_cast<std::size_t>(k)]; }
    ChannelRecorder& Recorder(int k) { return recorders[static_cast<std::size_t>(k)]; }
    CControlPanelDlg& ControlPanel() { return *controlPanel; }
    int CurrentChannel() const { return currentChannel; }

protected:
    void OnInitDialog() override;
    void OnCommand(WPARAM wParam, LPARAM lParam) override;
    void OnSysCommand(int command) override;
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override;
    void OnTimer(std::uint32_t id) override;

    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // arrows select, Page Up and Down turn pages

private:
    void PostNetEvent(int code, ChannelInfo* info) override;  // to this window itself
    void OnNetEvent(int code, const ChannelInfo& info);
    void OnWatchdog();
    void OnPanelCommand(int id);
    void OnPopupPane(int pane);
    void HidePopups();
    bool IsCovered() const;

    void ToggleRecording();
    void SetAllRecording(bool on);
    void SetRecording(int k, bool on);

    void ChooseView(ViewMode view);
    void TurnPage(int step);
    void SelectNeighbour(int columns, int rows);
    void LayoutView();
    void SettleFocus(bool paneHadFocus);
    void PlacePane(VideoPane& pane, const PaneRect& rect);
    PaneRect PaneArea() const;
    void ResizeToScreen();
    void FitPanel();
    void ShowAbout();

    Paging paging;
    int popupPane = -1;                             // whose pop-up was asked for last
    QFrame* const paneFrame;                        // marks the pane area, never seen
    std::array<VideoPane*, kChannelCount> panes{};  // children of this window
    std::array<ChannelRecorder, kChannelCount> recorders;
    int currentChannel = 0;                    // the selected pane
    CControlPanelDlg* controlPanel = nullptr;  // child of this window, made by OnInitDialog
    std::optional<MessageLog> messageLog;      // over the panel's list
};

}  // namespace marvolen
