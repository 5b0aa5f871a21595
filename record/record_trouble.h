#pragma once

// What keeps a channel from recording. The system says nothing of it in its log or in messages;
// whoever shows the channel can.

namespace marvolen {

enum class RecordTrouble {
    None,         // it records, or would
    InUse,        // somebody else has the record file open
    CannotOpen,   // the record file can't be opened, read or, when opened, written
    NoSpace,      // the disk, a quota or a limit on the file's size has no room left
    WriteFailed,  // the disk doesn't take a frame, for another reason
    BadMaximum    // the maximum has no room for what is to be recorded
};

// The same in words for a user: a sentence without its full stop, "" for None.
const char* TroubleText(RecordTrouble trouble);

}  // namespace marvolen
