#pragma once

// CChannelSettingDlg: edits the settings of all sixteen channels, on a copy of the channel table.
//
// A page a channel, behind tabs. The page in sight previews its channel, over a connection of the
// dialog's own; every channel of the main window is closed meanwhile. What the pages say reaches
// the copy when they commit: with "Connect" and "Save...", and all of them when the modal run ends.
//
//   CChannelSettingDlg dialog(parent, channel);
//   if (dialog.DoModal() == IDOK) g_channelInfo = dialog.Channels();
//
// Interface thread only.

#include "config/channel_info.h"
#include "net/net_channel.h"
#include "net/net_event_owner.h"
#include "platform/dialog.h"
#include "settings/channel_tab_ctrl.h"

#include <string_view>

class QPushButton;

namespace marvolen {

class CChannelSettingDlg final : public CDialog, private NetEventOwner {
    Q_OBJECT

public:
    explicit CChannelSettingDlg(QWidget* parent);
    ~CChannelSettingDlg() override;

    // The tab to show first, 0 to 15; 0 if this isn't called. Before DoModal.
    void SetInitialTab(int index) { initialTab = index; }

    // After DoModal: the table as the pages left it.
    const ChannelTable& Channels() const { return channels; }

protected:
    void OnInitDialog() override;
    void OnModalEnd(int result) override;

private:
    void MakeControls();
    QPushButton* MakeButton(int id, const QString& text, const QString& accessibleName,
                            void (CChannelSettingDlg::*command)());
    bool MakePages();
    void DestroyPages();
    void ShowPage(int sel);

    void Load();
    void Save();
    void Paste();
    void ApplyMachineProperties(std::string_view text);

    void PostNetEvent(int, ChannelInfo*) override {}  // events of the preview are ignored

    CChannelTabCtrl* tabs = nullptr;
    NetChannel previewLink;
    ChannelTable channels;
    int initialTab = 0;
};

}  // namespace marvolen
