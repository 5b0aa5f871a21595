// The writing side of a record file.
//
// The order of the writes is what keeps the file readable wherever a program ends
// (docs/record_format.md, "Order of writes"): the header's head moves on before the oldest chunk's
// bytes go, and a chunk is linked only when its successor's block is in the file.

#include "record/record_file.h"

#include <algorithm>
#include <cstddef>

namespace marvolen {
namespace {

ChunkHeader EmptyChunk(std::uint64_t pos, std::uint64_t prev) {
    return {kChunkMagic, 0, pos, 0, prev, 0, 0};
}

}  // namespace

bool RecordFile::CreateNew(const std::string& path, std::uint64_t newMaxSize) {
    Reset();
    if (!AcceptsMaxSize(newMaxSize)) return Fail(RecordTrouble::BadMaximum);
    return (Create(path) && StartRecording(newMaxSize)) || FailToOpen();
}

// For an opening that got as far as the disk.
bool RecordFile::FailToOpen() {
    const bool inUse = OpenError() == FileOpenError::kInUse;
    const bool full = OpenError() == FileOpenError::kNoSpace || RanOutOfSpace();
    Close();
    return Fail(inUse  ? RecordTrouble::InUse
                : full ? RecordTrouble::NoSpace
                       : RecordTrouble::CannotOpen);
}

// Makes a record file of one that holds a fresh ring header.
bool RecordFile::StartRecording(std::uint64_t newMaxSize) {
    ring = RingGeometry(newMaxSize);
    InitChunk(GetHead(), 0);
    // The header goes to disk with its maximum at once: without it nobody could open the file.
    return FlushChunk() && SetHeaderMaxSize(newMaxSize) && WriteHeader() && SetLimited(true) &&
           Seek(GetHead() + kChunkBlockSize);
}

bool RecordFile::OpenAppend(const std::string& path, std::uint64_t newMaxSize) {
    Reset();
    if (!AcceptsMaxSize(newMaxSize)) return Fail(RecordTrouble::BadMaximum);
    return (Open(path) && GoOn(newMaxSize)) || FailToOpen();
}

bool RecordFile::OpenOrCreateNew(const std::string& path, std::uint64_t newMaxSize) {
    Reset();
    if (!AcceptsMaxSize(newMaxSize)) return Fail(RecordTrouble::BadMaximum);
    if (!OpenOrMake(path)) return FailToOpen();
    if (TakeUpRing() && GoOn(newMaxSize)) return true;
    // A file just made ends up here too: it holds nothing.
    if (!transferFailed && SetLimited(false) && Seek(0) && SetEndOfFile() && StartRing() &&
        StartRecording(newMaxSize)) {
        return true;
    }
    return FailToOpen();
}

// Goes on with the recording behind a ring header. False without a failed transfer: there is none
// that could be gone on with.
bool RecordFile::GoOn(std::uint64_t newMaxSize) {
    ring = StoredRing();
    // Its header was there a moment ago.
    if (GetSize() < sizeof(RingHeader)) transferFailed = true;
    std::vector<std::uint64_t> chain;
    if (!ReadChain(chain) || !CompleteLink(chain) || !ReadChunk(chain.back(), writeChunk)) {
        return false;
    }
    ChunkHeader stored;
    if (!Seek(chain.back()) || !ReadChunkHeader(stored)) return false;
    std::uint64_t end = DropLostRecords();
    writeChunkDirty = writeChunkDirty || stored.count != writeChunk.header.count;
    if (!AdoptMaxSize(newMaxSize, chain, end) || !SetLimited(true)) return false;
    return FlushChunkUnwatched() && Seek(end);
}

// A link that the program before this one was about to make counts, for its chunk is full; but its
// header doesn't say so yet.
bool RecordFile::CompleteLink(const std::vector<std::uint64_t>& chain) {
    if (chain.size() < 2) return true;
    const std::uint64_t former = chain[chain.size() - 2];
    ChunkHeader stored;
    if (!Seek(former) || !ReadChunkHeader(stored)) return false;
    if (stored.count == kChunkEntries) return true;
    if (!ReadChunk(former, writeChunk)) return false;
    blockEnd = ring.End();
    writeChunkDirty = true;
    return FlushChunk();
}

// Entries whose data isn't in the file, as after a power failure, are no records. At the end of the
// newest chunk's index they are dropped, since their place is about to be written to. Returns where
// that is: behind the remaining data, in the ring as it was written.
std::uint64_t RecordFile::DropLostRecords() {
    ChunkHeader& newest = writeChunk.header;
    const std::uint64_t room = ring.Size() - ring.Distance(GetHead(), newest.self);
    std::uint64_t used = kChunkBlockSize;
    std::uint32_t kept = 0;
    for (std::uint32_t k = 0; k < newest.count; ++k) {
        const IndexEntry& entry = writeChunk.entries[k];
        if (!ring.Holds(entry.pos)) continue;
        const std::uint64_t offset = ring.DistanceBehind(newest.self, entry.pos);
        if (offset < kChunkBlockSize || offset > room || entry.length > room - offset) continue;
        used = std::max(used, offset + entry.length);
        kept = k + 1;
    }
    // Whatever the slots behind hold must not be taken for entries once others stand before it.
    const auto unused = writeChunk.entries.begin() + kept;
    const bool stale = std::any_of(unused, writeChunk.entries.end(),
                                   [](const IndexEntry& entry) { return entry.pos != 0; });
    if (stale || kept != newest.count) writeChunkDirty = true;
    newest.count = kept;
    std::fill(unused, writeChunk.entries.end(), IndexEntry{});
    blockEnd = ring.End();
    return ring.Advance(newest.self, used);
}

// Makes newMaxSize the file's maximum. The place to go on, end, is still the old ring's; it is the
// same place in the new one, because what the old ring holds stays where it is.
bool RecordFile::AdoptMaxSize(std::uint64_t newMaxSize, const std::vector<std::uint64_t>& chain,
                              std::uint64_t& end) {
    if (newMaxSize < ring.End() && !KeepChunksBelow(newMaxSize, chain, end)) return false;
    // What a file holds beyond its ring must not become part of a larger one.
    if (newMaxSize > ring.End() && GetSize() > ring.End() &&
        !(Seek(ring.End()) && SetEndOfFile())) {
        transferFailed = true;
        return false;
    }
    if (!SetHeaderMaxSize(newMaxSize)) return false;
    ring = RingGeometry(newMaxSize);
    // Records behind the maximum that the file tells would be lost to every reader.
    return WriteHeader();
}

// Reduces the chain to the newest run of chunks that lie in one piece below newMaxSize. A chunk
// that knows itself by the ring's old end isn't among them, though it lies at the start: no
// position in the new ring is that one.
bool RecordFile::KeepChunksBelow(std::uint64_t newMaxSize, const std::vector<std::uint64_t>& chain,
                                 std::uint64_t& end) {
    const auto stays = [&](std::size_t k) {
        const std::uint64_t chunkEnd = k + 1 < chain.size() ? chain[k + 1] : end;
        return chain[k] < chunkEnd && chunkEnd <= newMaxSize;
    };
    std::size_t last = chain.size();
    while (last > 0 && !stays(last - 1)) --last;
    if (last == 0) return false;
    std::size_t first = last - 1;
    while (first > 0 && stays(first - 1)) --first;

    if (last < chain.size()) {
        if (!ReadChunk(chain[last - 1], writeChunk)) return false;
        writeChunk.header.next = 0;
        end = std::min(DropLostRecords(), chain[last]);  // a damaged index may name fewer, or more
        writeChunkDirty = true;
        if (!FlushChunk()) return false;
    }
    return SetHead(chain[first]);
}

bool RecordFile::WriteFrame(const VideoFrame& frame) {
    const SYSTEMTIME* const stamp = frame.Time();
    if (stamp == nullptr || !IsOpen()) return false;
    if (frame.Length() > ring.Size() - kChunkBlockSize) return Fail(RecordTrouble::BadMaximum);
    if (!MakeRoom(frame.Length()) || !AppendRecord(frame.Data(), frame.Length(), *stamp)) {
        return false;
    }
    trouble = RecordTrouble::None;
    return true;
}

// For a frame, right after the write that failed: the next one forgets why.
bool RecordFile::FailToWrite() {
    return Fail(RanOutOfSpace() ? RecordTrouble::NoSpace : RecordTrouble::WriteFailed);
}

bool RecordFile::AppendRecord(const void* data, std::uint32_t length, const SYSTEMTIME& stamp) {
    const std::uint64_t pos = Tell();
    IndexEntry& entry = writeChunk.entries[writeChunk.header.count];
    // An entry that a failed write left in the slot would name what is about to be overwritten.
    if (slotIsStale && !(entry = {}, WriteEntry())) return FailToWrite();
    slotIsStale = false;
    if (WriteAll(data, length)) {
        entry = {pos, length, stamp};
        slotIsStale = !WriteEntry();
        if (!slotIsStale) {
            ++writeChunk.header.count;
            writeChunkDirty = true;
            return true;
        }
    }
    Seek(pos);  // the next record begins where this one would have
    return FailToWrite();
}

// Puts the entry behind the counted ones into its slot. Where that is written in pieces, its
// position goes last, so that part of it is no entry. Leaves the position anywhere.
bool RecordFile::WriteEntry() {
    constexpr std::uint32_t kPageSize = 4096;
    constexpr std::uint32_t kBehindPos = offsetof(IndexEntry, length);
    const std::uint32_t offset =
        offsetof(ChunkBlock, entries) + writeChunk.header.count * std::uint32_t{sizeof(IndexEntry)};
    const RingGeometry blockRing(blockEnd);
    const std::uint64_t pos = blockRing.Advance(writeChunk.header.self, offset);
    const bool inOnePiece = pos % kPageSize <= kPageSize - sizeof(IndexEntry) &&
                            blockRing.End() - pos >= sizeof(IndexEntry);
    const std::uint64_t saved = Tell();
    SetWatch(false);
    const bool written = inOnePiece
                             ? WriteInBlock(offset, sizeof(IndexEntry))
                             : WriteInBlock(offset + kBehindPos, sizeof(IndexEntry) - kBehindPos) &&
                                   WriteInBlock(offset, kBehindPos);
    SetWatch(true);
    return Seek(saved) && written;
}

void RecordFile::CloseWriter() {
    SetWatch(false);
    if (IsOpen()) FlushChunk();
    Close();
}

// Bytes that can be written before they would reach the newest chunk's own index block.
std::uint64_t RecordFile::RoomBeforeOwnBlock() {
    return ring.Size() - ring.DistanceBehind(writeChunk.header.self, Tell());
}

// Sees to it that length bytes can be written at the position without the newest chunk overrunning
// its index or itself.
bool RecordFile::MakeRoom(std::uint32_t length) {
    const ChunkHeader& newest = writeChunk.header;
    if (newest.count == 0 && writeChunkDirty && !FlushChunkUnwatched()) return FailToWrite();
    if (newest.count == kChunkEntries) return StartChunk(Former::kLinked);
    if (length > RoomBeforeOwnBlock()) return StartChunk(Former::kDropped);
    return true;
}

// Begins a chunk at the position. On failure the former chunk is still the newest, unless part of
// it has been overwritten: then the new one is, and its block is written with the next frame.
bool RecordFile::StartChunk(Former former) {
    const std::uint64_t start = Tell();
    const std::uint64_t prev = former == Former::kLinked ? writeChunk.header.self : 0;
    const ChunkBlock fresh{EmptyChunk(start, prev), {}};

    writeChunk.header.next = start;
    bool done = WriteAll(&fresh, sizeof fresh);
    // Behind a chunk that fills the ring, the head is right here from the beginning.
    const bool untouched = !done && ring.Place(Tell()) == ring.Place(start);
    const bool formerRemains = GetHead() != start || untouched;
    if (formerRemains && done && former == Former::kDropped) done = GiveUpTo(start);
    if (formerRemains && former == Former::kLinked) {
        writeChunkDirty = true;
        done = done && FlushChunkUnwatched();
    }
    if (!done) FailToWrite();
    if (!done && formerRemains) {
        writeChunk.header.next = 0;
        FlushChunkUnwatched();  // nothing else would make its records known as long as this goes on
        return Seek(start) && false;
    }
    InitChunk(start, prev);
    writeChunkDirty = !done;
    return Seek(ring.Advance(start, kChunkBlockSize)) && done;
}

void RecordFile::InitChunk(std::uint64_t pos, std::uint64_t prev) {
    writeChunk = {EmptyChunk(pos, prev), {}};
    writeChunkDirty = true;
    slotIsStale = false;
    blockEnd = ring.End();
}

// The entries go first: until the header follows, the block in the file says what it said before,
// and the entries it counts are still the same.
bool RecordFile::FlushChunk() {
    if (!writeChunkDirty) return true;
    constexpr std::uint32_t kEntriesOffset = offsetof(ChunkBlock, entries);
    const bool inTwoPieces = HeaderLiesAcrossEnd(RingGeometry(blockEnd), writeChunk.header.self);
    if (!WriteInBlock(kEntriesOffset, kChunkBlockSize - kEntriesOffset) ||
        !(inTwoPieces ? WriteHeaderInPieces() : WriteInBlock(0, kEntriesOffset))) {
        return false;
    }
    writeChunkDirty = false;
    return true;
}

// For a header that lies across the ring's end: its link doesn't count while the chunk isn't full
// (SuccessorOf). The lower bytes of a count get there before the higher ones, so a smaller count
// never passes through one that is too large on its way to a larger one.
bool RecordFile::WriteHeaderInPieces() {
    constexpr std::uint32_t kCountOffset = offsetof(ChunkHeader, count);
    constexpr std::uint32_t kRest = sizeof(ChunkHeader) - kCountOffset;
    const std::uint32_t count = writeChunk.header.count;
    writeChunk.header.count = std::min(count, kChunkEntries - 1);
    const bool opened = WriteInBlock(kCountOffset, kRest);
    writeChunk.header.count = count;
    return opened && WriteInBlock(0, kCountOffset) && WriteInBlock(kCountOffset, kRest);
}

// Writes n bytes of writeChunk, from offset on, to their place in the file.
bool RecordFile::WriteInBlock(std::uint32_t offset, std::uint32_t n) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&writeChunk) + offset;
    const RingGeometry blockRing(blockEnd);
    const std::uint64_t pos = blockRing.Advance(writeChunk.header.self, offset);
    const auto beforeEnd =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(blockRing.End() - pos, n));
    if (!Seek(pos) || !WriteAll(bytes, beforeEnd)) return false;
    return beforeEnd == n || (Seek(kRingDataStart) && WriteAll(bytes + beforeEnd, n - beforeEnd));
}

// For a block that is rewritten where it lies: this must not move the head, nor the place to go on.
bool RecordFile::FlushChunkUnwatched() {
    const std::uint64_t saved = Tell();
    SetWatch(false);
    const bool flushed = FlushChunk();
    SetWatch(true);
    return Seek(saved) && flushed;
}

void RecordFile::OnHeadReached() {
    // The newest chunk is given up only in favour of one that is about to follow it.
    if (const std::uint64_t next = SuccessorOfHead(); next != 0 && !GiveUpTo(next)) RefuseWrite();
}

// The chunk after the head, 0 for the newest one. A head that can't be read, or that leads to no
// chunk, hides the chunks behind it; the newest is known without the file.
std::uint64_t RecordFile::SuccessorOfHead() {
    const ChunkHeader& newest = writeChunk.header;
    if (GetHead() == newest.self) return newest.next;
    const std::uint64_t saved = Tell();
    ChunkHeader oldest;
    const bool known = Seek(GetHead()) && ReadChunkHeader(oldest) && IsBehindHead(oldest.next);
    Seek(saved);
    return known ? oldest.next : newest.self;
}

// Whether a chunk begins at pos, between the oldest and the newest one.
bool RecordFile::IsBehindHead(std::uint64_t pos) {
    if (pos == writeChunk.header.self) return true;
    if (!ring.Holds(pos)) return false;
    const std::uint64_t step = ring.Distance(GetHead(), pos);
    if (step < kChunkBlockSize || step > ring.Distance(GetHead(), writeChunk.header.self)) {
        return false;
    }
    ChunkHeader chunk;
    return Seek(pos) && ReadChunkHeader(chunk);
}

// Moves the head on, in the file too: what lies before it may be overwritten from now on. When the
// file doesn't take the header, the head stays, and nothing may be overwritten.
bool RecordFile::GiveUpTo(std::uint64_t newHead) {
    const std::uint64_t saved = Tell();
    const std::uint64_t oldHead = GetHead();
    SetHead(newHead);
    SetWatch(false);
    const bool written = WriteHeader();
    SetWatch(true);
    if (!written) SetHead(oldHead);
    return Seek(saved) && written;
}

}  // namespace marvolen
