#pragma once

// The texts of the message log and the file it is exported to. Pure but for WriteLogFile; no Qt.
//
// The file has a line for each row: the row's texts as they are, parted by "," and ended by a line
// feed. There is no heading and no quoting, so a comma within a text parts it.

#include "config/channel_info.h"
#include "platform/system_time.h"

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

// Names and widths of the log's columns, as list_columns.h reads them.
inline constexpr std::string_view kLogColumns = "ID,20;CH,54;Time,115;Message,192";
inline constexpr std::size_t kLogColumnCount = 4;

using LogTexts = std::array<std::string, kLogColumnCount>;

// A row: channel number of at least two digits ("03"), channel's name, time ("2004/02/29 08:15:00")
// and message. channelNumber: 1 to 16.
LogTexts LogEntryTexts(int channelNumber, const ChannelInfo& info, const SYSTEMTIME& time,
                       std::string_view message);

// A line of the file: "03,Gate,2004/02/29 08:15:00,Network close.\n". No texts give a line feed.
std::string ExportLine(std::span<const std::string> texts);

// The texts of a row, borrowed until the next call.
using RowTexts = std::function<std::span<const std::string>(int row)>;

// Makes the file (path: native, UTF-8), empties one that is there, and writes rows 0 to rowCount -
// 1 in this order. False when it can't be made, and then nothing was written, or when writing
// fails, and then it ends anywhere.
bool WriteLogFile(const std::string& path, int rowCount, const RowTexts& rowTexts);

}  // namespace marvolen
