#pragma once

// RecordPlayer: the head of a playback chain. It reads records from a record file and delivers each
// as a frame; the record delivered last is the file's current one.
//
// Interface thread only, as the chain it feeds.

#include "config/channel_info.h"
#include "net/frame_pool.h"
#include "net/frame_receiver.h"
#include "record/record_file.h"

#include <cstdint>

namespace marvolen {

class RecordPlayer final : public FrameReceiver, private RecordFile {
public:
    RecordPlayer() = default;
    // Closes the file.
    ~RecordPlayer() override = default;

    // Opens the record's file at recordPath and makes the oldest record the current one, without
    // delivering it. The file is held from then on until the player is destroyed. False for a file
    // that is missing, foreign, in use or without records, or when memory is short; a player opens
    // one file in its life.
    bool Open(const ChannelInfo& record);

    // Makes the next newer, or next older, record the current one and delivers it to the next
    // receiver. False when nothing is delivered: there is no such record, or no free frame, and the
    // current record stays; or it can't be read, and is the current one all the same.
    bool StepForward();
    bool StepBack();

    // Makes record number index (0 is the oldest) the current one, without delivering it. False
    // when there is no such record, which leaves the current one.
    using RecordFile::SeekTo;

    // Records in the file.
    using RecordFile::RecordCount;

private:
    using RecordFile::Open;  // hidden by the one above

    bool Show(bool (RecordFile::*step)());

    FramePool pool;
};

}  // namespace marvolen
