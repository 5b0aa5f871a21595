#include "record/uncounted_entries.h"

#include <limits>

namespace marvolen {

void TakeUpEntries(ChunkBlock& block, const RingGeometry& ring, std::uint64_t head) {
    ChunkHeader& chunk = block.header;
    if (chunk.count >= kChunkEntries) return;
    const std::uint64_t next = chunk.next;
    chunk.next = 0;
    if (!ring.Holds(chunk.self)) return;
    const std::uint64_t room = ring.Size() - ring.Distance(head, chunk.self);
    std::uint64_t used = kChunkBlockSize;
    std::uint32_t entries = 0;
    for (; entries < kChunkEntries && used <= room; ++entries) {
        const IndexEntry& entry = block.entries[entries];
        if (!ring.Holds(entry.pos) ||
            ring.Place(entry.pos) != ring.Place(ring.Advance(chunk.self, used)) ||
            entry.length > std::numeric_limits<std::uint32_t>::max() ||
            entry.length > room - used) {
            break;
        }
        used += entry.length;
    }
    if (entries <= chunk.count) return;
    chunk.count = entries;
    if (entries == kChunkEntries && ring.Holds(next) &&
        ring.Place(next) == ring.Place(ring.Advance(chunk.self, used))) {
        chunk.next = next;
    }
}

}  // namespace marvolen
