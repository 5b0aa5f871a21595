#include "app/message_log.h"

#include "app/log_text.h"

#include <utility>

namespace marvolen {

MessageLog::MessageLog(CSortListCtrl& itsList, Clock itsClock)
    : list(itsList), clock(std::move(itsClock)) {
    list.SetColumns(kLogColumns);
    // Names are as long as their users make them; a short one fits.
    list.SetColumnSamples({"00", "NET.16", "0000/00/00 00:00:00", "Network connect."});
    // Events differ in their last word.
    list.SetElideMode(static_cast<int>(kLogColumnCount) - 1, Qt::ElideLeft);
}

void MessageLog::AddLogEntry(const ChannelInfo* info, std::string_view message) {
    const LogTexts texts = LogEntryTexts(ChannelNumber(info), *info, clock(), message);
    list.AddRow(texts[0], texts[1], texts[2], texts[3]);
}

void MessageLog::Clean() {
    list.DeleteAllRows();
}

}  // namespace marvolen
