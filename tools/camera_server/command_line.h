#pragma once

// The camera_server program's command line.

#include "tools/camera_server/camera_server.h"

#include <cstddef>
#include <string>
#include <vector>

namespace marvolen {

struct CommandLine {
    bool help = false;
    CameraServerOptions server;
    std::string folder;            // --folder; empty: the sixteen places
    std::size_t loopLength = 120;  // --loop, pictures
    std::string settingsFile;      // --write-settings; empty: none
    std::vector<std::string> names;
    std::string recordPath;  // "%d" or "%02d" stands for the channel number
    int maxSizeMB = 1024;
    int cameraRow = 0;  // rows of the option tables, for the settings file
    int sizeRow = 1;
    int rateRow = 0;
    bool serve = true;  // false: write the settings and end
};

// The names channels have when none are given: "Gate", "Car park", ...
const std::vector<std::string>& DefaultChannelNames();

// Reads the arguments after the program's name. False, with error set to one line, when there is
// anything it doesn't understand.
bool ParseCommandLine(const std::vector<std::string>& arguments, CommandLine& commandLine,
                      std::string& error);

// The text of --help.
std::string HelpText();

// Reads "3" or "all" into zero-based channel numbers, each below channelCount.
bool ParseChannels(const std::string& text, int channelCount, std::vector<int>& channels);

}  // namespace marvolen
