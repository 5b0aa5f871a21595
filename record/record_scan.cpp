#include "record/record_scan.h"

#include "record/uncounted_entries.h"

#include <algorithm>

namespace marvolen {

bool RecordScan::Open(const std::string& path) {
    isRing = false;
    header = {};
    ring = RingGeometry();
    if (!file.OpenShared(path)) return false;
    fileSize = file.Size();
    std::uint32_t got = 0;
    if (file.Read(&header, sizeof header, got) && got == sizeof header &&
        header.magic == kRingMagic) {
        ring = RingGeometry(std::min(fileSize, header.maxSize));
        isRing = ring.Holds(header.head) && ring.Size() >= kChunkBlockSize;
    }
    Rewind();
    return true;
}

void RecordScan::Rewind() {
    nextPosition = header.head;
    nextOffset = 0;
    leadsForwards = true;
}

RecordScan::Step RecordScan::Broken(const char* reason) {
    why = reason;
    nextPosition = 0;
    return Step::kBroken;
}

RecordScan::Step RecordScan::Next(std::uint64_t& position, ChunkBlock& block) {
    if (!isRing || nextPosition == 0) return Step::kEnd;
    position = nextPosition;
    if (!ring.Holds(position)) return Broken("a link leads here, out of the file");
    if (!leadsForwards) return Broken("a link leads back here");
    if (nextOffset + kChunkBlockSize > ring.Size()) return Broken("no room for an index block");
    if (!ReadAt(position, &block, sizeof block)) return Broken("index block can't be read");
    if (block.header.magic != kChunkMagic) return Broken("no index block here");

    if (block.header.self == position) TakeUpEntries(block, ring, header.head);
    // A bad link is told about when it is followed: the chunk that holds it is fine otherwise.
    nextPosition = block.header.next;
    if (ring.Holds(nextPosition)) {
        const std::uint64_t step = ring.Distance(position, nextPosition);
        leadsForwards = step >= kChunkBlockSize && step < ring.Size() - nextOffset;
        nextOffset += step;
    }
    return Step::kChunk;
}

bool RecordScan::ReadAt(std::uint64_t position, void* buffer, std::uint32_t length) {
    if (!ring.Holds(position) || length > ring.Size()) return false;
    const auto beforeEnd =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(ring.End() - position, length));
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    std::uint32_t got = 0;
    if (!file.Seek(position) || !file.Read(bytes, beforeEnd, got) || got != beforeEnd) return false;
    const std::uint32_t rest = length - beforeEnd;
    return file.Seek(kRingDataStart) && file.Read(bytes + beforeEnd, rest, got) && got == rest;
}

bool IsRecordFile(const std::string& path) {
    RecordScan scan;
    return scan.Open(path) && scan.IsRing();
}

}  // namespace marvolen
