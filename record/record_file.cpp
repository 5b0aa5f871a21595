// What writer and reader of a record file share: index blocks, and the chain they form.

#include "record/record_file.h"

#include "record/uncounted_entries.h"

#include <algorithm>

namespace marvolen {

void RecordFile::Reset() {
    CloseWriter();
    writeChunkDirty = false;
    slotIsStale = false;
    transferFailed = false;
    readChunk = {};
    cursor = 0;
    chunkList.clear();
    trouble = RecordTrouble::None;
    // Close leaves a ring file's watch as it was; a file being opened must not have one.
    SetWatch(false);
}

bool RecordFile::Fail(RecordTrouble reason) {
    trouble = reason;
    return false;
}

bool RecordFile::WriteAll(const void* buf, std::uint32_t n) {
    const auto* bytes = static_cast<const std::uint8_t*>(buf);
    bool stalled = false;
    while (n > 0) {
        std::uint32_t put = 0;
        if (!Write(bytes, n, &put)) {
            transferFailed = true;
            return false;
        }
        // One write of nothing is the turn at the ring's end; a second one would go on for ever.
        if (put == 0 && stalled) return false;
        stalled = put == 0;
        bytes += put;
        n -= put;
    }
    return true;
}

bool RecordFile::ReadAll(void* buf, std::uint32_t n) {
    auto* bytes = static_cast<std::uint8_t*>(buf);
    bool stalled = false;
    while (n > 0) {
        std::uint32_t got = 0;
        if (!Read(bytes, n, &got)) {
            transferFailed = true;
            return false;
        }
        if (got == 0 && stalled) return false;
        stalled = got == 0;
        bytes += got;
        n -= got;
    }
    return true;
}

bool RecordFile::ReadChunkHeader(ChunkHeader& destination) {
    return ReadAll(&destination, sizeof destination) && destination.magic == kChunkMagic;
}

bool RecordFile::ReadChunk(std::uint64_t pos, ChunkBlock& destination) {
    if (!ring.Holds(pos) || !Seek(pos) || !ReadAll(&destination, sizeof destination)) return false;
    ChunkHeader& read = destination.header;
    if (read.magic != kChunkMagic || read.self != pos || read.count > kChunkEntries) return false;
    TakeUpEntries(destination, ring, GetHead());
    return true;
}

// The stored maximum ends the ring, unless the file is shorter: a ring that was wrapped when its
// maximum was raised turns at its old end until it grows past it.
RingGeometry RecordFile::StoredRing() {
    return RingGeometry(std::min(GetSize(), GetHeaderMaxSize()));
}

// Lists the chunks' positions, oldest first. Every step must lead forwards by at least a block, and
// the blocks must fit between the head and the head again, so that no chain is followed twice.
bool RecordFile::ReadChain(std::vector<std::uint64_t>& chain) {
    std::uint64_t pos = GetHead();
    if (!ring.Holds(pos)) return false;
    for (std::uint64_t offset = 0; offset + kChunkBlockSize <= ring.Size();) {
        ChunkHeader chunk;
        if (!Seek(pos) || !ReadChunkHeader(chunk)) return false;
        chain.push_back(pos);
        if (chunk.count < kChunkEntries) {
            ChunkBlock block;
            // An unsound one is somebody else's to tell about: it ends the chain.
            if (!ReadChunk(pos, block)) return !transferFailed;
            chunk = block.header;
        }
        const std::uint64_t next = chunk.next;
        if (next == 0) return true;
        if (!ring.Holds(next)) return false;
        const std::uint64_t step = ring.Distance(pos, next);
        if (step < kChunkBlockSize) return false;
        offset += step;
        pos = next;
    }
    return false;
}

}  // namespace marvolen
