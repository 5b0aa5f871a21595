#pragma once

// RecordCursor: goes through the records that a scanned file's chain leads to, oldest first, with
// the numbers that `record_file list` gives them.

#include "record/record_scan.h"

#include <cstdint>

namespace marvolen {

class RecordCursor {
public:
    // Starts over with the oldest record. The scan is borrowed, and must not be used for another
    // walk meanwhile.
    explicit RecordCursor(RecordScan& openScan) : scan(openScan) { scan.Rewind(); }

    // Goes on to the next record; false when there is none.
    bool Next();

    // Of the current record; valid after a Next that was true.
    std::uint64_t Number() const { return number; }
    const IndexEntry& Entry() const { return block.entries[entry]; }

    // Whether the whole record is in the file, and not what has taken its place.
    bool IsWhole() const;

    // Whether the chain had a proper end; valid after a Next that was false.
    bool ChainIsWhole() const { return whole; }

private:
    RecordScan& scan;
    ChunkBlock block{};
    std::uint32_t count = 0;  // entries of the block
    std::uint32_t entry = 0;
    std::uint64_t number = 0;
    bool begun = false;
    bool whole = false;
};

}  // namespace marvolen
