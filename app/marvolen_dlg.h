#pragma once

// The main window: sixteen live panes on the left, the control panel along the right edge.
//
// It shows what its LiveChannels do and logs what happens to them, arranges the panes in views of
// one, four or sixteen, with pages, and carries out the control panel's commands. Interface thread
// only.

#include "app/control_panel_dlg.h"
#include "app/live_channels.h"
#include "app/message_log.h"
#include "app/paging.h"
#include "app/pane_layout.h"
#include "config/channel_info.h"
#include "display/video_pane.h"
#include "net/net_event_owner.h"
#include "platform/dialog.h"

#include <QFrame>

#include <array>
#include <optional>

namespace marvolen {

class CPlaybackDlg;

class CMarvolenDlg final : public CDialog,
                           private LiveChannelsView,
                           private ChannelTimers,
                           private NetEventOwner {
    Q_OBJECT

public:
    CMarvolenDlg();
    ~CMarvolenDlg() override;

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

    // Closes every channel's files as they are, and the one that is exported to. For a program that
    // ends from within its event loop; nothing is shown.
    void CloseFiles();

    VideoPane& Pane(int k) { return *panes[static_cast<std::size_t>(k)]; }
    LiveChannels& Channels() { return channels; }
    CControlPanelDlg& ControlPanel() { return *controlPanel; }
    int CurrentChannel() const { return currentChannel; }

protected:
    void OnInitDialog() override;
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override;
    void OnTimer(std::uint32_t id) override;

    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // arrows select, Page Up and Down turn pages

private:
    // What the channels ask of their window.
    bool ReopenPane(int k, const ChannelInfo& info) override;
    FrameReceiver& PaneReceiver(int k) override { return Pane(k); }
    void ShowConnected(int k, bool connected) override;
    void ShowRecording(int k, bool recording) override;
    void ShowTrouble(int k, const std::string& text) override;
    void AddLogEntry(const ChannelInfo& info, std::string_view message) override;
    void SetChannelTimer(std::uint32_t id, std::uint32_t milliseconds) override;
    void KillChannelTimer(std::uint32_t id) override;
    void PostNetEvent(int code, ChannelInfo* info) override;  // to this window itself

    void ConnectPanel();
    void OnPopupPane(int pane);
    void HidePopups();
    bool IsCovered() const;

    void ToggleRecording();
    void SetAllRecording(bool on);
    void SaveLog();
    void Exit();

    void ChooseView(ViewMode view);
    void TurnPage(int step);
    void SelectNeighbour(int columns, int rows);
    void LayoutView();
    void SettleFocus(bool paneHadFocus);
    void PlacePane(VideoPane& pane, const PaneRect& rect);
    PaneRect PaneArea() const;
    void PlaceOnScreen();
    void FitPanel();
    void ShowAbout();
    void ShowPlayback();
    void ShowSetting();

    Paging paging;
    int popupPane = -1;                             // whose pop-up was asked for last
    QFrame* const paneFrame;                        // marks the pane area, never seen
    std::array<VideoPane*, kChannelCount> panes{};  // children of this window
    LiveChannels channels;
    int currentChannel = 0;                    // the selected pane
    CControlPanelDlg* controlPanel = nullptr;  // child of this window, made by OnInitDialog
    std::optional<MessageLog> messageLog;      // over the panel's list
    CPlaybackDlg* playback = nullptr;          // while it is open
};

}  // namespace marvolen
