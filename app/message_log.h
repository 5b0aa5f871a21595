#pragma once

// The message log: what happened to the channels' connections, a row for each event, newest last.
// Interface thread only.
//
// The log is the list it is shown in. It isn't kept beyond the run and grows until it is cleaned.

#include "app/sort_list_ctrl.h"
#include "config/channel_info.h"
#include "platform/system_time.h"

#include <functional>
#include <string>
#include <string_view>

namespace marvolen {

class MessageLog {
public:
    using Clock = std::function<SYSTEMTIME()>;

    // Gives the list the log's columns. The list is borrowed and outlives the log. clock tells the
    // local time.
    explicit MessageLog(CSortListCtrl& itsList, Clock itsClock = LocalTimeNow);

    // Appends an event of a channel, a record of g_channelInfo, with the channel's name and the
    // time as they are now. message is UTF-8.
    void AddLogEntry(const ChannelInfo* info, std::string_view message);

    // Removes every entry.
    void Clean();

    CSortListCtrl& List() const { return list; }

private:
    CSortListCtrl& list;
    const Clock clock;
};

}  // namespace marvolen
