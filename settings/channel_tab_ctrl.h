#pragma once

// CChannelTabCtrl: the tabs of the Channel Setting dialog, and what dragging one does to the
// channels' pages. Only the pages' controls change; the records follow when the pages commit.
// Interface thread only.

#include "settings/drag_tab_ctrl.h"
#include "settings/page_fields.h"

namespace marvolen {

class CChannelPageDlg;

class CChannelTabCtrl final : public CDragTabCtrl {
    Q_OBJECT

public:
    using CDragTabCtrl::CDragTabCtrl;

    // The page of a tab; null for an index there isn't.
    CChannelPageDlg* GetPage(int index) const;

    void CopyPageFields(const CChannelPageDlg& source, CChannelPageDlg& target, FileFields files);
    void ClearPage(CChannelPageDlg& page);

protected:
    void OnTabDropOutside(int from) override;   // clears the page
    void OnTabSwap(int from, int to) override;  // exchanges all fields
    void OnTabCopy(int from, int to) override;  // the target keeps its record file
    void OnTabMove(int from, int to) override;  // those in between make room
};

}  // namespace marvolen
