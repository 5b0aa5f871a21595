#include "config/settings_file.h"

#include "config/replace_file.h"

#include <filesystem>
#include <fstream>

namespace marvolen {
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
    return ReplaceFile(path, {reinterpret_cast<const char*>(table.data()), sizeof table});
}

void LoadSettings() {
    ReadSettingsFile(kSettingsFileName, g_channelInfo);
}

void SaveSettings() {
    WriteSettingsFile(kSettingsFileName, g_channelInfo);
}

}  // namespace marvolen
