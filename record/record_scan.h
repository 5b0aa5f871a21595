#pragma once

// RecordScan: looks through a record file without ever changing it.
//
// For tools and checks, which unlike playback want to see a damaged file too. The file is opened
// read-only and shared: a recorder's file can't be opened, and while a scan has a file no recorder
// gets it. Used by one thread at a time.

#include "platform/file_handle.h"
#include "record/record_format.h"
#include "record/ring_geometry.h"

#include <cstdint>
#include <string>

namespace marvolen {

class RecordScan {
public:
    enum class Step { kChunk, kEnd, kBroken };

    // Opens the file at a native path and reads its header. False when it can't be opened;
    // OpenError() says why. A file that is no record file opens, but isn't one: see IsRing.
    bool Open(const std::string& path);
    FileOpenError OpenError() const { return file.OpenError(); }

    // Of the file opened last. The header was read and starts with "RING", and the ring can hold a
    // chunk at its head.
    bool IsRing() const { return isRing; }
    const RingHeader& Header() const { return header; }
    std::uint64_t FileSize() const { return fileSize; }
    // The ring as the file has it: it turns at the maximum, or at the end of a shorter file.
    const RingGeometry& Ring() const { return ring; }

    // Goes through the chain, oldest chunk first. kChunk fills position and block, whose count
    // includes the entries that the file doesn't count yet (record/uncounted_entries.h); only the
    // block's magic has been checked. kBroken: position is where a chunk should have been and why
    // says what was found instead. At most one block for each that fits into the ring is given out.
    Step Next(std::uint64_t& position, ChunkBlock& block);
    const std::string& Why() const { return why; }
    // Starts over with the oldest chunk.
    void Rewind();

    // Reads length bytes from a position, turning at the ring's end. False when they aren't there.
    bool ReadAt(std::uint64_t position, void* buffer, std::uint32_t length);

private:
    Step Broken(const char* reason);

    FileHandle file;
    bool isRing = false;
    std::uint64_t fileSize = 0;
    RingHeader header{};
    RingGeometry ring;

    std::uint64_t nextPosition = 0;  // 0: the chain has ended
    std::uint64_t nextOffset = 0;    // from the head, forwards
    bool leadsForwards = true;       // the link to nextPosition
    std::string why;
};

// Whether there is a record file at a native path: one that nobody holds, whatever its state.
bool IsRecordFile(const std::string& path);

}  // namespace marvolen
