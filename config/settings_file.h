#pragma once

// Settings files: the channel table as it lies in memory, 25280 bytes, without header or checksum
// (docs/settings_format.md). The program's own is "recinfo.bin" in the current directory.

#include "config/channel_info.h"

#include <string>

namespace marvolen {

inline constexpr const char* kSettingsFileName = "recinfo.bin";

// Replaces table by the file's contents. False, with table untouched, when the file can't be read
// or isn't exactly 25280 bytes long. No field is checked. path is native.
bool ReadSettingsFile(const std::string& path, ChannelTable& table);

// Writes table to the file, replacing what was there at once (config/replace_file.h): it has the
// old table or the new one, never part of either. A new file is for its owner's eyes only, since it
// holds passwords; one that exists keeps its permissions. False when the file can't be replaced; it
// is then as it was.
bool WriteSettingsFile(const std::string& path, const ChannelTable& table);

// Read "recinfo.bin" into g_channelInfo, before any channel runs, and write it back when the
// program ends. Failures are silent: the table, or the file, stays as it was.
void LoadSettings();
void SaveSettings();

}  // namespace marvolen
