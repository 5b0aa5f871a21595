#pragma once

// RecordWriter: the last receiver of a channel's chain. Appends each frame it is delivered to the
// channel's record file, synchronously and straight from the frame's slot. Interface thread.

#include "config/channel_info.h"
#include "net/frame_receiver.h"
#include "record/record_file.h"

namespace marvolen {

class RecordWriter : public FrameReceiver, public RecordFile {
public:
    RecordWriter() = default;

    // Writes the index and the header back and closes the file.
    ~RecordWriter() override;

    // Opens the channel's recordPath to go on after its newest record; a missing file, and
    // one that holds no recording that could be gone on with, is replaced by a new one. maxSizeMB,
    // taken as unsigned, limits the file. False when the file can't be had (no such folder, in
    // use, ...), when it can't be read or written, and for a maximum that no record file can have:
    // what is recorded already then stays as it is.
    bool Open(const ChannelInfo& channel);

    // Appends the frame, then forwards it. A frame that can't be written is lost; the next one is
    // tried again.
    void Deliver(FramePtr frame) override;

private:
    using RecordFile::Open;
};

}  // namespace marvolen
