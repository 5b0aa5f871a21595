#include "tools/camera_server/command_line.h"

#include "config/channel_info.h"
#include "config/channel_options.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

namespace marvolen {
namespace {

bool ParseInt(const std::string& text, int smallest, int largest, int& number) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < smallest || value > largest) return false;
    number = value;
    return true;
}

// What an option does with its value; false when the value makes no sense.
using Setter = std::function<bool(const std::string& value)>;

Setter Int(int& target, int smallest, int largest) {
    return [&target, smallest, largest](const std::string& value) {
        return ParseInt(value, smallest, largest, target);
    };
}

Setter Text(std::string& target) {
    return [&target](const std::string& value) {
        target = value;
        return true;
    };
}

Setter List(std::vector<std::string>& target) {
    return [&target](const std::string& value) {
        target.push_back(value);
        return true;
    };
}

Setter Names(std::vector<std::string>& target) {
    return [&target](const std::string& value) {
        target.clear();
        for (std::size_t start = 0; start <= value.size();) {
            const std::size_t end = std::min(value.find(',', start), value.size());
            target.push_back(value.substr(start, end - start));
            start = end + 1;
        }
        return target.size() <= kChannelCount;
    };
}

int LastRow(const auto& options) {
    return static_cast<int>(options.size()) - 1;
}

class Parser {
public:
    explicit Parser(CommandLine& result) : line(result) {}

    bool Parse(const std::vector<std::string>& arguments, std::string& error) {
        for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
            if (const auto flag = flags.find(*argument); flag != flags.end()) {
                *flag->second.first = flag->second.second;
                continue;
            }
            const std::size_t equals = argument->find('=');
            const std::string name = argument->substr(0, equals);
            const auto option = options.find(name);
            if (option == options.end()) {
                error = "unknown option " + *argument;
                return false;
            }
            if (equals == std::string::npos && argument + 1 == arguments.end()) {
                error = name + " needs a value";
                return false;
            }
            const std::string value =
                equals == std::string::npos ? *++argument : argument->substr(equals + 1);
            if (!option->second(value)) return Refuse(name, value, error);
        }
        return Finish(error);
    }

private:
    static bool Refuse(const std::string& name, const std::string& value, std::string& error) {
        error = name + " can't be \"" + value + '"';
        return false;
    }

    // What depends on several options, whatever their order.
    bool Finish(std::string& error) {
        CameraServerOptions& server = line.server;
        const int count = server.channelCount;
        if (port + count > 65536) {
            error = "the last channel's port lies beyond 65535";
            return false;
        }
        server.basePort = static_cast<std::uint16_t>(port);
        line.loopLength = static_cast<std::size_t>(loopLength);
        server.faults.resize(static_cast<std::size_t>(count));
        server.singlePictures.resize(static_cast<std::size_t>(count));
        std::vector<int> channels;
        for (const std::string& text : faults) {
            const std::size_t equals = text.find('=');
            const auto fault =
                ParseFault(equals == std::string::npos ? "" : text.substr(equals + 1));
            if (!fault || !ParseChannels(text.substr(0, equals), count, channels)) {
                return Refuse("--fault", text, error);
            }
            for (const int k : channels) server.faults[static_cast<std::size_t>(k)] = *fault;
        }
        for (const std::string& text : singles) {
            if (!ParseChannels(text, count, channels)) return Refuse("--single", text, error);
            for (const int k : channels) server.singlePictures[static_cast<std::size_t>(k)] = true;
        }
        return true;
    }

    CommandLine& line;
    int port = 8101;
    int loopLength = 120;
    std::vector<std::string> faults;
    std::vector<std::string> singles;

    // Flags set something to true or false, options take a value.
    const std::map<std::string, std::pair<bool*, bool>> flags{
        {"--help", {&line.help, true}},
        {"-h", {&line.help, true}},
        {"--no-auth", {&line.server.checkCredentials, false}},
        {"--settings-only", {&line.serve, false}},
    };
    const std::map<std::string, Setter> options{
        {"--address", Text(line.server.address)},
        {"--channels", Int(line.server.channelCount, 1, kChannelCount)},
        {"--port", Int(port, 1, 65535)},
        {"--user", Text(line.server.userName)},
        {"--password", Text(line.server.password)},
        {"--sent-dir", Text(line.server.sentDir)},
        {"--fault", List(faults)},
        {"--single", List(singles)},
        {"--folder", Text(line.folder)},
        {"--loop", Int(loopLength, 1, 3000)},
        {"--write-settings", Text(line.settingsFile)},
        {"--record-path", Text(line.recordPath)},
        {"--max-size", Int(line.maxSizeMB, 0, std::numeric_limits<int>::max())},
        {"--camera-row", Int(line.cameraRow, 0, LastRow(g_cameraOptions))},
        {"--size-row", Int(line.sizeRow, 0, LastRow(g_sizeOptions))},
        {"--rate-row", Int(line.rateRow, 0, LastRow(g_rateOptions))},
        {"--names", Names(line.names)},
    };
};

constexpr const char* kHelp = R"(Usage: camera_server [OPTION]...

Network cameras for the desk. Every channel listens on a port of its own and
answers  GET /getimage?camera=1&fmt=full&delay=0  with an endless multipart
stream of JPEG pictures, as fast as 30 a second. Prints "ready" when all ports
are open, then one line for each connection, request and header line of it.
Ends on SIGTERM, SIGINT or the command "quit".

Serving
  --address A        dotted IPv4 address to listen on (127.0.0.1)
  --port P           port of channel 1; the others follow (8101)
  --channels N       number of channels, 1 to 16 (16)
  --user U           user name that requests have to carry (root)
  --password W       and their password (tuvk)
  --no-auth          take any credentials, or none
  --single C         channel C (or all) answers with a single picture of type
                     image/jpeg and closes; may be repeated
  --sent-dir DIR     keep account of every picture that was sent completely:
                     DIR/chNN.index, one line each
                       CONNECTION NUMBER DATE TIME HUNDREDTHS COUNTER LENGTH HASH
                     and DIR/pictures/HASH.jpg, every distinct picture once

Pictures
  --loop N           pictures in the loop of a camera (120, 4 seconds)
  --folder DIR       serve the JPEG files of DIR, in the order of their names,
                     instead of the sixteen places
  Of a request's options, camera (1 to 4) chooses another place; fmt is full
  (704x480), sif (352x240) or qsif (176x120); delay adds that many hundredths
  of a second to the time between pictures.

Settings for the viewer
  --write-settings F write a channel table for these channels to F
  --settings-only    do only that, and end
  --names A,B,...    names of the channels (Gate, Car park, ...)
  --record-path P    record files; %d or %02d stands for the channel number
                     (c:\chl%02d.dbt)
  --max-size MB      largest size of a record file (1024)
  --camera-row R     row of the camera table (0: Camera 1)
  --size-row R       row of the size table (1: Middle; 0 is Large, 2 Small)
  --rate-row R       row of the rate table (0: 30 fps; 9 is 0.1 fps)

Faults
  --fault C=FAULT    channel C (or all) misbehaves; may be repeated
)";

constexpr const char* kCommandHelp = R"(
Commands on standard input, one a line, while the server runs
  fault C FAULT      give channel C (or all) another fault, or none
  drop C             end the open connections of channel C (or all)
  stats              print what every channel has sent
  quit               end
)";

}  // namespace

const std::vector<std::string>& DefaultChannelNames() {
    static const std::vector<std::string> kNames{
        "Gate",    "Car park",    "Loading dock", "Reception", "Main street", "Corridor",
        "Harbour", "Warehouse",   "Garden",       "Skyline",   "Highway",     "Back yard",
        "Lake",    "Server room", "Station",      "Lighthouse"};
    return kNames;
}

bool ParseChannels(const std::string& text, int channelCount, std::vector<int>& channels) {
    channels.clear();
    if (text == "all") {
        channels.resize(static_cast<std::size_t>(channelCount));
        std::iota(channels.begin(), channels.end(), 0);
        return true;
    }
    int number = 0;
    if (!ParseInt(text, 1, channelCount, number)) return false;
    channels.push_back(number - 1);
    return true;
}

bool ParseCommandLine(const std::vector<std::string>& arguments, CommandLine& commandLine,
                      std::string& error) {
    commandLine = {};
    commandLine.server.keepSent = false;
    commandLine.names = DefaultChannelNames();
    commandLine.recordPath = "c:\\chl%02d.dbt";
    return Parser(commandLine).Parse(arguments, error);
}

std::string HelpText() {
    return kHelp + FaultHelp() + kCommandHelp;
}

}  // namespace marvolen
