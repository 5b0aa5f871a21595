#pragma once

// PlaybackSource: a record file being played back. It owns the ends of the chain
//
//   RecordPlayer -> target -> FrameCapture
//
// where target is the pane that shows the pictures. Interface thread only.

#include "config/channel_info.h"
#include "playback/frame_capture.h"
#include "playback/record_player.h"

#include <cstdint>
#include <memory>

namespace marvolen {

class PlaybackSource {
public:
    PlaybackSource() = default;
    // The target must not have gone before; or Close before it goes.
    ~PlaybackSource() { Close(); }
    PlaybackSource(const PlaybackSource&) = delete;
    PlaybackSource& operator=(const PlaybackSource&) = delete;

    // Opens the file that the record names and wires the chain. Nothing is shown yet, and the
    // oldest record is the current one. target is borrowed until Close. False, without a chain,
    // where RecordPlayer::Open is; what was open before is closed in either case.
    bool Open(const ChannelInfo& record, FrameReceiver* target);

    // Unwires the chain and lets go of the file. Harmless when closed.
    void Close();

    // Show the next newer, or next older, record. False when nothing new is shown, always so when
    // closed; see RecordPlayer.
    bool StepForward();
    bool StepBack();

    // Shows what stands at slider position index: the record behind record number index. False
    // when nothing new is shown, as at the last position.
    bool ShowPosition(std::uint32_t index);

    // Records in the file; 0 when closed.
    std::uint32_t RecordCount();

    // What was shown last, kept beyond Close.
    const CapturedFrame& Captured() const { return capture.Frame(); }

private:
    FrameCapture capture;
    std::unique_ptr<RecordPlayer> player;  // null when closed
};

}  // namespace marvolen
