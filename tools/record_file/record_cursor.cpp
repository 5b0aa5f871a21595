#include "tools/record_file/record_cursor.h"

#include <algorithm>

namespace marvolen {

bool RecordCursor::Next() {
    ++entry;
    while (entry >= count) {
        std::uint64_t position = 0;
        const RecordScan::Step step = scan.Next(position, block);
        whole = step == RecordScan::Step::kEnd;
        if (step != RecordScan::Step::kChunk) return false;
        count = std::min(block.header.count, kChunkEntries);
        entry = 0;
    }
    number += begun ? 1 : 0;
    begun = true;
    return true;
}

// In a file that was cut short, what lies across the ring's turn isn't what was written there: such
// a record doesn't end where the next one begins.
bool RecordCursor::IsWhole() const {
    const RingGeometry& ring = scan.Ring();
    const IndexEntry& record = Entry();
    if (!ring.Holds(record.pos) || !ring.Fits(scan.Header().head, record.pos, record.length)) {
        return false;
    }
    const std::uint64_t following =
        entry + 1 < count ? block.entries[entry + 1].pos : block.header.next;
    return record.length <= ring.End() - record.pos || !ring.Holds(following) ||
           ring.Place(following) == ring.Place(ring.Advance(record.pos, record.length));
}

}  // namespace marvolen
