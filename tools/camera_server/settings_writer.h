#pragma once

// The viewer's settings for the channels that a camera server offers.

#include "config/channel_info.h"
#include "tools/camera_server/command_line.h"

namespace marvolen {

// A table whose first channels reach the server that the command line describes, by its address,
// ports and credentials; the others are unused and as the factory left them. A server on 0.0.0.0 is
// reached as 127.0.0.1.
ChannelTable MakeChannelTable(const CommandLine& commandLine);

// The pattern with the first "%d" or "%02d" replaced by the number.
std::string NumberedPath(const std::string& pattern, int number);

}  // namespace marvolen
