// The reading side of a record file.

#include "record/record_file.h"
#include "record/uncounted_entries.h"

#include <algorithm>
#include <limits>

namespace marvolen {
namespace {

// Stands for a chunk's newest record.
constexpr std::uint32_t kLastEntry = std::numeric_limits<std::uint32_t>::max();

}  // namespace

bool RecordFile::OpenForRead(const std::string& path) {
    Reset();
    if (!Open(path)) return false;
    ring = StoredRing();
    SetLimited(true);
    if (ReadChain(chunkList) && LoadChunk(GetHead(), 0) && Seek(readChunk.entries[0].pos)) {
        return true;
    }
    CloseReader();
    return false;
}

void RecordFile::CloseReader() {
    chunkList.clear();
    readChunk = {};
    cursor = 0;
    Close();
}

// Makes the given entry of the chunk at pos the current record, or leaves everything as it was.
bool RecordFile::LoadChunk(std::uint64_t pos, std::uint32_t entry) {
    ChunkBlock loaded;
    if (!ReadChunk(pos, loaded) || !BlockTurnsWhereWritten(loaded)) return false;
    if (entry == kLastEntry) entry = loaded.header.count - 1;
    if (entry >= loaded.header.count) return false;
    readChunk = loaded;
    cursor = entry;
    return true;
}

std::uint32_t RecordFile::RecordCount() {
    if (chunkList.empty()) return 0;
    ChunkBlock newest;
    // One that can't be used leaves the newest chunk out.
    const bool usable = ReadChunk(chunkList.back(), newest);
    if (!usable && transferFailed) return 0;
    const std::uint64_t inNewest = usable ? newest.header.count : 0;
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>((chunkList.size() - 1) * kChunkEntries + inNewest,
                                std::numeric_limits<std::uint32_t>::max()));
}

bool RecordFile::SeekTo(std::uint32_t index) {
    const std::size_t chunk = index / kChunkEntries;
    const std::uint32_t entry = index % kChunkEntries;
    if (chunk >= chunkList.size()) return false;
    if (chunkList[chunk] != readChunk.header.self) return LoadChunk(chunkList[chunk], entry);
    if (entry >= readChunk.header.count) return false;
    cursor = entry;
    return true;
}

bool RecordFile::StepForward() {
    if (cursor + 1 < readChunk.header.count) {
        ++cursor;
        return true;
    }
    return readChunk.header.next != 0 && LoadChunk(readChunk.header.next, 0);
}

bool RecordFile::StepBack() {
    if (cursor > 0) {
        --cursor;
        return true;
    }
    return readChunk.header.self != GetHead() && LoadChunk(readChunk.header.prev, kLastEntry);
}

// A file shorter than its maximum has either turned before that was raised or was cut short, and
// then the ring doesn't turn where it was written to. Whatever lies across the turn tells: a block
// by its entries, which must be back to back up to the next chunk, a record by ending where the
// next one begins.
bool RecordFile::BlockTurnsWhereWritten(const ChunkBlock& block) const {
    const ChunkHeader& chunk = block.header;
    const bool inOnePiece = ring.End() - ring.Place(chunk.self) >= kChunkBlockSize;
    if (inOnePiece || ring.End() == GetHeaderMaxSize()) return true;
    std::uint64_t end = ring.Advance(chunk.self, kChunkBlockSize);
    for (std::uint32_t k = 0; k < chunk.count; ++k) {
        const IndexEntry& entry = block.entries[k];
        if (ring.Place(entry.pos) != ring.Place(end) || entry.length > ring.Size()) return false;
        end = ring.Advance(end, entry.length);
    }
    return chunk.next == 0 || ring.Place(chunk.next) == ring.Place(end);
}

bool RecordFile::RecordTurnsWhereWritten() const {
    const IndexEntry& entry = readChunk.entries[cursor];
    const std::uint64_t following = cursor + 1 < readChunk.header.count
                                        ? readChunk.entries[cursor + 1].pos
                                        : readChunk.header.next;
    if (entry.length <= ring.End() - entry.pos || following == 0) return true;
    return ring.Place(following) == ring.Place(ring.Advance(entry.pos, entry.length));
}

bool RecordFile::ReadRecord(VideoFrame& frame) {
    if (cursor >= readChunk.header.count) return false;
    const IndexEntry& entry = readChunk.entries[cursor];
    if (entry.length > frame.Capacity() || !ring.Holds(entry.pos)) return false;
    // No record runs on into the oldest chunk. One that would do so has lost its end, in a file
    // that was cut short for example.
    if (!ring.Fits(GetHead(), entry.pos, entry.length) || !RecordTurnsWhereWritten()) return false;
    const auto length = static_cast<std::uint32_t>(entry.length);
    if (!Seek(entry.pos) || !ReadAll(frame.Data(), length)) return false;
    frame.SetLength(length);
    frame.SetTime(entry.stamp);
    return true;
}

}  // namespace marvolen
