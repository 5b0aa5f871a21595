#include "tools/camera_server/settings_writer.h"

#include "platform/text_field.h"

namespace marvolen {

std::string NumberedPath(const std::string& pattern, int number) {
    std::string digits = std::to_string(number);
    std::string path = pattern;
    if (const std::size_t at = path.find("%02d"); at != std::string::npos) {
        if (digits.size() < 2) digits.insert(0, 1, '0');
        path.replace(at, 4, digits);
    } else if (const std::size_t plain = path.find("%d"); plain != std::string::npos) {
        path.replace(plain, 2, digits);
    }
    return path;
}

ChannelTable MakeChannelTable(const CommandLine& commandLine) {
    ChannelTable table = FactoryChannelTable();
    const CameraServerOptions& server = commandLine.server;
    const bool anyAddress = server.address == "0.0.0.0";
    for (int k = 0; k < server.channelCount; ++k) {
        const auto at = static_cast<std::size_t>(k);
        ChannelInfo& info = table[at];
        if (at < commandLine.names.size()) SetFieldText(info.netName, commandLine.names[at]);
        SetFieldText(info.host, anyAddress ? "127.0.0.1" : server.address);
        SetFieldText(info.port, std::to_string(server.basePort + k));
        SetFieldText(info.userName, server.userName);
        SetFieldText(info.password, server.password);
        SetFieldText(info.recordPath, NumberedPath(commandLine.recordPath, k + 1));
        info.maxSizeMB = commandLine.maxSizeMB;
        info.cameraIndex = commandLine.cameraRow;
        info.sizeIndex = commandLine.sizeRow;
        info.rateIndex = commandLine.rateRow;
    }
    return table;
}

}  // namespace marvolen
