#include "config/channel_info.h"

#include <algorithm>
#include <string_view>

namespace marvolen {
namespace {

// The buffer is all zero, which terminates the text.
void SetFactoryText(char (&field)[kTextFieldSize], std::string_view text) {
    std::copy(text.begin(), text.end(), field);
}

}  // namespace

ChannelTable FactoryChannelTable() {
    ChannelTable table{};
    for (int k = 0; k < kChannelCount; ++k) {
        ChannelInfo& info = table[static_cast<std::size_t>(k)];
        info.channelIndex = k;
        SetFactoryText(info.port, "80");
        SetFactoryText(info.userName, "root");
        SetFactoryText(info.password, "tuvk");
        SetFactoryText(info.recordPath, "c:\\chl00.dbt");
        info.recordPath[6] = static_cast<char>('0' + (k + 1) / 10);
        info.recordPath[7] = static_cast<char>('0' + (k + 1) % 10);
        info.maxSizeMB = 1024;
        info.cameraIndex = 0;
        info.sizeIndex = 1;
        info.rateIndex = 0;
    }
    return table;
}

ChannelTable g_channelInfo = FactoryChannelTable();

int ChannelNumber(const ChannelInfo* info) {
    return static_cast<int>(info - g_channelInfo.data()) + 1;
}

}  // namespace marvolen
