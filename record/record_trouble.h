#pragma once

// What keeps a channel from recording. It is no matter for the message log: whoever shows the
// channel tells it.

namespace marvolen {

enum class RecordTrouble {
    None,         // nothing known of
    InUse,        // another program, or another channel, has the record file open
    CannotOpen,   // opening the record file failed for another reason
    NoSpace,      // the disk, a quota or the largest size of a file leaves no room
    WriteFailed,  // a frame couldn't be written, for another reason
    BadMaximum    // the file's maximum size has no room for an index block and the frame
};

// What a user reads: a sentence without its full stop, "" for None.
const char* TroubleText(RecordTrouble trouble);

}  // namespace marvolen
