#pragma once

// CChannelPageDlg: the page of one channel in the Channel Setting dialog.
//
// Its controls are the working copy of the channel's settings; CommitToRecord takes them to the
// record. Its pane previews the channel over a link that all pages share: whoever opens it has
// closed it for the page before. Interface thread only.

#include "config/channel_info.h"
#include "display/preview_pane.h"
#include "net/net_event_owner.h"
#include "platform/dialog.h"
#include "settings/page_fields.h"

class QComboBox;
class QLineEdit;

namespace marvolen {

class CFieldEdit;
class NetChannel;

class CChannelPageDlg final : public CDialog, private NetEventOwner {
    Q_OBJECT

public:
    // record and link are borrowed: the record as long as the page lives, the link likewise.
    CChannelPageDlg(QWidget* parent, ChannelInfo& itsRecord, NetChannel& link);

    // Record to controls.
    void FillFromRecord();
    // Controls to record: only what they say differently. An empty NET Name becomes "(host)" first.
    void CommitToRecord();

    // What the controls say, and having them say it.
    PageFields Fields() const;
    void SetFields(const PageFields& fields);

    // An empty NET Name becomes the host in parentheses.
    void DefaultNetName();

    // "Paste": a host and a port take the place of what the page has, the NET Name goes.
    void SetAddress(std::string_view newHost, std::string_view newPort);

    // Opens the pane, then the link with the record as it was last committed. The link's events are
    // told to owner. A record whose texts lead nowhere leaves the pane black.
    void OpenPreview(NetEventOwner& owner);
    void ClosePreview() { preview->Close(); }

protected:
    void OnOK() override {}      // Enter presses "Connect"
    void OnCancel() override {}  // Escape is the dialog's

private:
    // How it looks: channel_page_controls.cpp.
    void MakeControls();
    QWidget* MakeNetworkGroup();
    QWidget* MakeDisplayGroup();
    QWidget* MakeRecordGroup();
    QWidget* MakePreviewGroup();
    CFieldEdit* MakeFieldEdit(int id, const QString& accessibleName);
    QComboBox* MakeComboBox(int id, const QString& accessibleName);

    void Connect();
    void ChoosePath();
    void ShowPathPlace();
    void PostNetEvent(int, ChannelInfo*) override {}  // a preview's don't matter

    CFieldEdit* recordPath = nullptr;
    QLineEdit* maxSize = nullptr;
    CFieldEdit* password = nullptr;
    CFieldEdit* userName = nullptr;
    PreviewPane* preview = nullptr;
    QComboBox* rateBox = nullptr;
    CFieldEdit* netName = nullptr;
    QComboBox* cameraBox = nullptr;
    QComboBox* sizeBox = nullptr;
    CFieldEdit* port = nullptr;
    CFieldEdit* host = nullptr;
    ChannelInfo& record;
    NetChannel& sharedLink;
    // Rows that the boxes stand for while none is chosen in them: what the record has is no row.
    std::int32_t foreignCamera = 0;
    std::int32_t foreignSize = 0;
    std::int32_t foreignRate = 0;
};

}  // namespace marvolen
