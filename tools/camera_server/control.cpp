#include "tools/camera_server/control.h"

#include "tools/camera_server/command_line.h"

#include <sstream>
#include <vector>

namespace marvolen {
namespace {

std::string StatsText(const CameraServer& server, int channelCount) {
    std::ostringstream text;
    for (int k = 0; k < channelCount; ++k) {
        const ChannelStats stats = server.Stats(k);
        text << "NET." << k + 1 << " connections " << stats.connections << " open "
             << stats.openConnections << " requests " << stats.requests << " sent " << stats.sent
             << " bytes " << stats.sentBytes << " skipped " << stats.skipped << '\n';
    }
    return text.str();
}

}  // namespace

ControlReply RunCommand(const std::string& line, CameraServer& server, int channelCount) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    const std::string verb = words.empty() ? "" : words[0];
    std::vector<int> channels;
    if (words.empty()) return {};
    if (verb == "quit" && words.size() == 1) return {.quit = true, .text = "ok\n"};
    if (verb == "stats" && words.size() == 1) {
        return {.text = StatsText(server, channelCount) + "ok\n"};
    }
    if (verb == "drop" && words.size() == 2 && ParseChannels(words[1], channelCount, channels)) {
        for (const int k : channels) server.Drop(k);
        return {.text = "ok\n"};
    }
    if (verb == "fault" && words.size() == 3 && ParseChannels(words[1], channelCount, channels)) {
        if (const auto fault = ParseFault(words[2])) {
            for (const int k : channels) server.SetFault(k, *fault);
            return {.text = "ok\n"};
        }
    }
    return {.text = "error: can't do \"" + line + "\"\n"};
}

}  // namespace marvolen
