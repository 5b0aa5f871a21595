#include "app/log_text.h"

#include "platform/text_field.h"

#include <array>
#include <cstdio>
#include <fstream>

namespace marvolen {

LogTexts LogEntryTexts(int channelNumber, const ChannelInfo& info, const SYSTEMTIME& time,
                       std::string_view message) {
    std::array<char, 16> number;
    std::snprintf(number.data(), number.size(), "%02d", channelNumber);
    return {number.data(), std::string(FieldText(info.netName)), FormatTime(time),
            std::string(message)};
}

std::string ExportLine(std::span<const std::string> texts) {
    std::string line;
    for (const std::string& text : texts) {
        line += text;
        line += ',';
    }
    if (line.empty()) line.resize(1);
    line.back() = '\n';
    return line;
}

bool WriteLogFile(const std::string& path, int rowCount, const RowTexts& rowTexts) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    for (int row = 0; file && row < rowCount; ++row) {
        const std::string line = ExportLine(rowTexts(row));
        file.write(line.data(), static_cast<std::streamsize>(line.size()));
    }
    file.close();
    return file.good();
}

}  // namespace marvolen
