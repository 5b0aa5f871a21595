#include "config/settings_file.h"

#include <filesystem>
#include <fstream>

namespace marvolen {
namespace {

// The file holds passwords: for its owner's eyes only. Where that can't be had, it is as it was.
void HideFromOthers(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) return;
    fs::permissions(path, fs::perms::group_all | fs::perms::others_all, fs::perm_options::remove,
                    ignored);
}

}  // namespace

bool ReadSettingsFile(const std::string& path, ChannelTable& table) {
    std::error_code error;
    if (std::filesystem::file_size(path, error) != sizeof(ChannelTable) || error) return false;
    std::ifstream file(path, std::ios::binary);
    ChannelTable stored;
    if (!file.read(reinterpret_cast<char*>(stored.data()), sizeof stored)) return false;
    table = stored;
    return true;
}

bool WriteSettingsFile(const std::string& path, const ChannelTable& table) {
    // Written over the old bytes first and cut to length afterwards: on a full disk the old file's
    // blocks are still there to be written to, where truncating first would give them away.
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    if (!file.is_open()) file.open(path, std::ios::binary | std::ios::out | std::ios::trunc);
    if (!file.is_open()) return false;
    HideFromOthers(path);  // before there is anything in it to read
    file.write(reinterpret_cast<const char*>(table.data()), sizeof table);
    file.close();
    if (!file) return false;
    std::error_code error;
    std::filesystem::resize_file(path, sizeof table, error);
    return !error;
}

void LoadSettings() {
    ReadSettingsFile(kSettingsFileName, g_channelInfo);
}

void SaveSettings() {
    WriteSettingsFile(kSettingsFileName, g_channelInfo);
}

}  // namespace marvolen
