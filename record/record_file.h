#pragma once

// RecordFile: a channel's recording, a ring file of JPEG records (docs/record_format.md).
//
// An object either writes
//
//   CreateNew or OpenAppend, WriteFrame any number of times, CloseWriter
//
// or reads
//
//   OpenForRead, then navigation and ReadRecord, CloseReader
//
// never both. Records are known by their number, counted from the oldest one in the file. Once the
// ring is full, each chunk of 600 records is given up as a whole when its place is needed.
//
// Every failure is a false, and after it the file is as sound as before: a failed WriteFrame costs
// that frame, a failed step leaves the current record where it was. Damaged files are refused or
// give fewer records; they never lead to an access outside the ring or to an endless walk.
//
// Opening an object that is open closes it first.
//
// Used by one thread at a time. Paths are native. The file is held exclusively while it is open.

#include "net/video_frame.h"
#include "record/record_format.h"
#include "record/record_trouble.h"
#include "record/ring_file.h"
#include "record/ring_geometry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace marvolen {

class RecordFile : public RingFile {
public:
    // Whether a record file may have this maximum: it must hold the header and one index block.
    // CreateNew and OpenAppend fail on any other and then touch nothing.
    static bool AcceptsMaxSize(std::uint64_t size) { return size >= kSmallestRing; }

    // A new, empty record file of at most newMaxSize bytes in place of whatever file was there.
    bool CreateNew(const std::string& path, std::uint64_t newMaxSize);

    // Reopens an existing record file, with newMaxSize from now on, to go on after its newest
    // record. Fails for a missing, foreign or damaged file. A smaller maximum keeps the newest
    // consecutive chunks that lie wholly below it, and fails when there is none.
    bool OpenAppend(const std::string& path, std::uint64_t newMaxSize);

    // OpenAppend, or CreateNew where there is no recording to go on with: the file is missing, or
    // what it holds is foreign or damaged. A file that can't be had, because it is in use for
    // example, and one that can't be read or written at the moment stay as they are; then this
    // fails. The file is held from before it is looked at.
    bool OpenOrCreateNew(const std::string& path, std::uint64_t newMaxSize);

    // Appends the frame's picture as one record. False when the frame has no time, when it can't
    // fit into the ring beside an index block, or when the disk doesn't take it; the next frame
    // then goes where this one would have.
    bool WriteFrame(const VideoFrame& frame);

    // Writes back the index block and the header, then closes. A file that isn't closed has its
    // records all the same: whoever opens it next finds the entries that aren't counted yet.
    void CloseWriter();

    // What the latest CreateNew, OpenAppend, OpenOrCreateNew or WriteFrame failed on; None after
    // one that worked. A frame without a time is no trouble: it isn't to be recorded.
    RecordTrouble Trouble() const { return trouble; }

    // Opens for reading, at the oldest record. A file without records can't be opened.
    bool OpenForRead(const std::string& path);

    // Records in the file; 0 when its newest index block can't be read.
    std::uint32_t RecordCount();

    // Make another record the current one: number index (0 is the oldest), the next newer, the next
    // older. False when there is no such record.
    bool SeekTo(std::uint32_t index);
    bool StepForward();
    bool StepBack();

    // Reads the current record into frame, with its time stamp. False when the frame's buffer is
    // too small or the file doesn't hold the whole record; the frame's bytes are then undefined.
    bool ReadRecord(VideoFrame& frame);

    void CloseReader();

protected:
    // Gives up the oldest chunk. Refuses the write when the file can't be told so.
    void OnHeadReached() override;

private:
    // What becomes of the chunk being written when a new one follows it.
    enum class Former { kLinked, kDropped };

    void InitChunk(std::uint64_t pos, std::uint64_t prev);
    bool FlushChunk();
    bool FlushChunkUnwatched();
    bool WriteHeaderInPieces();
    bool WriteInBlock(std::uint32_t offset, std::uint32_t n);
    bool ReadChunkHeader(ChunkHeader& destination);
    bool ReadChunk(std::uint64_t pos, ChunkBlock& destination);
    bool BlockTurnsWhereWritten(const ChunkBlock& block) const;
    bool RecordTurnsWhereWritten() const;
    bool LoadChunk(std::uint64_t pos, std::uint32_t entry);
    bool WriteAll(const void* buf, std::uint32_t n);
    bool ReadAll(void* buf, std::uint32_t n);

    void Reset();
    bool Fail(RecordTrouble reason);
    bool FailToOpen();
    bool FailToWrite();
    bool StartRecording(std::uint64_t newMaxSize);
    bool GoOn(std::uint64_t newMaxSize);
    RingGeometry StoredRing();
    bool ReadChain(std::vector<std::uint64_t>& chain);
    std::uint64_t DropLostRecords();
    bool AdoptMaxSize(std::uint64_t newMaxSize, const std::vector<std::uint64_t>& chain,
                      std::uint64_t& end);
    bool KeepChunksBelow(std::uint64_t newMaxSize, const std::vector<std::uint64_t>& chain,
                         std::uint64_t& end);
    std::uint64_t RoomBeforeOwnBlock();
    bool MakeRoom(std::uint32_t length);
    bool CompleteLink(const std::vector<std::uint64_t>& chain);
    bool WriteEntry();
    bool AppendRecord(const void* data, std::uint32_t length, const SYSTEMTIME& stamp);
    bool StartChunk(Former former);
    std::uint64_t SuccessorOfHead();
    bool IsBehindHead(std::uint64_t pos);
    bool GiveUpTo(std::uint64_t newHead);

    ChunkBlock writeChunk{};       // the newest chunk, as it is to lie in the file
    bool writeChunkDirty = false;  // differs from the file
    bool slotIsStale = false;      // in the file, the one behind the counted entries isn't zero
    ChunkBlock readChunk{};
    std::uint32_t cursor = 0;              // the current record's entry in readChunk
    std::vector<std::uint64_t> chunkList;  // chunk positions, oldest first; readers only

    RecordTrouble trouble = RecordTrouble::None;

    RingGeometry ring;           // the ring as the open file has it
    std::uint64_t blockEnd = 0;  // where writeChunk's block wraps: the ring's end when it began
};

}  // namespace marvolen
