#include "tools/camera_server/command_line.h"

#include "config/channel_info.h"
#include "config/channel_options.h"

#include <charconv>
#include <functional>
#include <limits>
#include <map>
#include <numeric>

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

class Parser {
public:
    explicit Parser(CommandLine& result) : line(result) {
        AddServerOptions();
        AddPictureOptions();
        AddSettingsOptions();
        flags["--help"] = [this] { line.help = true; };
        flags["-h"] = [this] { line.help = true; };
        flags["--no-auth"] = [this] { line.server.checkCredentials = false; };
        flags["--settings-only"] = [this] { line.serve = false; };
    }

    bool Parse(const std::vector<std::string>& arguments, std::string& error) {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const std::string& argument = arguments[i];
            if (const auto flag = flags.find(argument); flag != flags.end()) {
                flag->second();
                continue;
            }
            const std::size_t equals = argument.find('=');
            const std::string name = argument.substr(0, equals);
            const auto option = options.find(name);
            if (option == options.end()) {
                error = "unknown option " + argument;
                return false;
            }
            if (equals == std::string::npos && i + 1 == arguments.size()) {
                error = name + " needs a value";
                return false;
            }
            const std::string value =
                equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1);
            if (!option->second(value)) {
                error = name + " can't be \"" + value + '"';
                return false;
            }
        }
        return Finish(error);
    }

private:
    void AddInt(const char* name, int& target, int smallest, int largest) {
        options[name] = [&target, smallest, largest](const std::string& value) {
            return ParseInt(value, smallest, largest, target);
        };
    }

    void AddText(const char* name, std::string& target) {
        options[name] = [&target](const std::string& value) {
            target = value;
            return true;
        };
    }

    void AddServerOptions() {
        AddText("--address", line.server.address);
        AddInt("--channels", line.server.channelCount, 1, kChannelCount);
        AddInt("--port", port, 1, 65535);
        AddText("--user", line.server.userName);
        AddText("--password", line.server.password);
        AddText("--sent-dir", line.server.sentDir);
        options["--fault"] = [this](const std::string& value) {
            faults.push_back(value);
            return true;
        };
        options["--single"] = [this](const std::string& value) {
            singles.push_back(value);
            return true;
        };
    }

    void AddPictureOptions() {
        AddText("--folder", line.folder);
        AddInt("--loop", loopLength, 1, 3000);
    }

    void AddSettingsOptions() {
        AddText("--write-settings", line.settingsFile);
        AddText("--record-path", line.recordPath);
        AddInt("--max-size", line.maxSizeMB, 0, std::numeric_limits<int>::max());
        AddInt("--camera-row", line.cameraRow, 0, static_cast<int>(g_cameraOptions.size()) - 1);
        AddInt("--size-row", line.sizeRow, 0, static_cast<int>(g_sizeOptions.size()) - 1);
        AddInt("--rate-row", line.rateRow, 0, static_cast<int>(g_rateOptions.size()) - 1);
        options["--names"] = [this](const std::string& value) {
            SplitNames(value);
            return line.names.size() <= kChannelCount;
        };
    }

    void SplitNames(const std::string& value) {
        line.names.clear();
        for (std::size_t start = 0; start <= value.size();) {
            const std::size_t end = std::min(value.find(',', start), value.size());
            line.names.push_back(value.substr(start, end - start));
            start = end + 1;
        }
    }

    // What depends on several options, whatever their order.
    bool Finish(std::string& error) {
        const int count = line.server.channelCount;
        if (port + count > 65536) {
            error = "the last channel's port lies beyond 65535";
            return false;
        }
        line.server.basePort = static_cast<std::uint16_t>(port);
        line.loopLength = static_cast<std::size_t>(loopLength);
        line.server.faults.resize(static_cast<std::size_t>(count));
        line.server.singlePictures.resize(static_cast<std::size_t>(count));
        std::vector<int> channels;
        for (const std::string& text : faults) {
            Fault fault;
            if (!ParseChannelFault(text, count, channels, fault)) {
                error = "--fault can't be \"" + text + '"';
                return false;
            }
            for (const int k : channels) line.server.faults[static_cast<std::size_t>(k)] = fault;
        }
        for (const std::string& text : singles) {
            if (!ParseChannels(text, count, channels)) {
                error = "--single can't be \"" + text + '"';
                return false;
            }
            for (const int k : channels) {
                line.server.singlePictures[static_cast<std::size_t>(k)] = true;
            }
        }
        return true;
    }

    CommandLine& line;
    std::map<std::string, Setter> options;
    std::map<std::string, std::function<void()>> flags;
    int port = 8101;
    int loopLength = 120;
    std::vector<std::string> faults;
    std::vector<std::string> singles;
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

bool ParseChannelFault(const std::string& text, int channelCount, std::vector<int>& channels,
                       Fault& fault) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return false;
    const auto parsed = ParseFault(text.substr(equals + 1));
    if (!parsed || !ParseChannels(text.substr(0, equals), channelCount, channels)) return false;
    fault = *parsed;
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
