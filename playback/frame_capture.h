#pragma once

// FrameCapture: the end of a playback chain. It keeps what was shown last, for the export.

#include "net/frame_receiver.h"

#include <cstdint>
#include <string>
#include <vector>

namespace marvolen {

// A picture that outlives its frame, as the export takes it.
struct CapturedFrame {
    std::vector<std::uint8_t> data;  // the JPEG image: the first length bytes
    std::uint32_t length = 0;
    std::int32_t width = -1;  // pixels; -1 when it couldn't be decoded, or there is none yet
    std::int32_t height = -1;
    std::string timeText;  // "2004/02/29 08:15:00"; empty for a picture without a time
};

class FrameCapture final : public FrameReceiver {
public:
    // Copies the frame and drops it. Nothing is allocated once pictures stop growing.
    void Deliver(FramePtr frame) override;

    // The frame delivered last. Borrowed: changes with the next one.
    const CapturedFrame& Frame() const { return captured; }

private:
    CapturedFrame captured;
};

}  // namespace marvolen
