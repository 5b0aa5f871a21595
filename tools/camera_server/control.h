#pragma once

// Commands to a running server, one a line (see --help).

#include "tools/camera_server/camera_server.h"

#include <string>

namespace marvolen {

struct ControlReply {
    bool quit = false;
    std::string text = {};  // lines to print, each with its line end
};

// Carries a command out. What it doesn't understand changes nothing and is answered "error ...";
// other commands are answered "ok", stats with a line for each channel before it.
ControlReply RunCommand(const std::string& line, CameraServer& server, int channelCount);

}  // namespace marvolen
