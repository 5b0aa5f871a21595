#pragma once

// What a channel's port and its connections share.

#include "tools/camera_server/camera_listener.h"
#include "tools/camera_server/camera_server.h"
#include "tools/camera_server/sent_journal.h"

#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

struct CameraChannel {
    CameraChannel(int channelIndex, const CameraServerOptions& serverOptions,
                  PictureSource* pictureSource, TimePoint serverStart)
        : index(channelIndex),
          options(serverOptions),
          pictures(pictureSource),
          start(serverStart) {}

    // Constant after construction. The camera exposes a picture every period, beginning at start.
    const int index;
    const CameraServerOptions& options;
    PictureSource* const pictures;
    const TimePoint start;

    Fault fault;
    bool single = false;
    CameraListener listener;
    ChannelStats stats;
    std::vector<std::string> requests;
    SentJournal journal;

    // Passes "NET.3 TEXT" to the log.
    void Log(std::string_view text) const {
        if (!options.log) return;
        std::string line = "NET." + std::to_string(index + 1) + ' ';
        options.log(line.append(text));
    }
};

}  // namespace marvolen
