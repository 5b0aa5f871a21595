#include "settings/channel_tab_ctrl.h"

#include "settings/channel_page_dlg.h"

#include <vector>

namespace marvolen {

CChannelPageDlg* CChannelTabCtrl::GetPage(int index) const {
    return qobject_cast<CChannelPageDlg*>(GetItemData(index));
}

void CChannelTabCtrl::CopyPageFields(const CChannelPageDlg& source, CChannelPageDlg& target,
                                     FileFields files) {
    PageFields fields = target.Fields();
    CopyFields(source.Fields(), fields, files);
    target.SetFields(fields);
}

void CChannelTabCtrl::ClearPage(CChannelPageDlg& page) {
    PageFields fields = page.Fields();
    Clear(fields);
    page.SetFields(fields);
}

void CChannelTabCtrl::OnTabDropOutside(int from) {
    ClearPage(*GetPage(from));
}

void CChannelTabCtrl::OnTabSwap(int from, int to) {
    const PageFields fields = GetPage(from)->Fields();
    CopyPageFields(*GetPage(to), *GetPage(from), FileFields::kWith);
    GetPage(to)->SetFields(fields);
}

void CChannelTabCtrl::OnTabCopy(int from, int to) {
    CopyPageFields(*GetPage(from), *GetPage(to), FileFields::kWithout);
}

void CChannelTabCtrl::OnTabMove(int from, int to) {
    std::vector<PageFields> fields;
    fields.reserve(static_cast<std::size_t>(GetItemCount()));
    for (int k = 0; k < GetItemCount(); ++k) fields.push_back(GetPage(k)->Fields());
    MoveFields(fields, static_cast<std::size_t>(from), static_cast<std::size_t>(to));
    for (int k = 0; k < GetItemCount(); ++k) {
        GetPage(k)->SetFields(fields[static_cast<std::size_t>(k)]);
    }
}

}  // namespace marvolen
