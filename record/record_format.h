#pragma once

// The record file as it lies on disk; docs/record_format.md is the whole story.
//
// A record file is a ring of at most maxSize bytes: a RingHeader, and from kRingDataStart on a
// chain of chunks, each an index block of kChunkEntries entries and the records' data right behind
// it. What reaches maxSize goes on at kRingDataStart.
//
// All integers are little-endian; positions are bytes from the start of the file.

#include "platform/system_time.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace marvolen {

static_assert(std::endian::native == std::endian::little,
              "the structures below are read and written as they lie in memory");

inline constexpr std::uint32_t kRingMagic = 0x474E4952;   // "RING"
inline constexpr std::uint32_t kChunkMagic = 0x4E554843;  // "CHUN"
inline constexpr std::uint32_t kChunkEntries = 600;

struct RingHeader {
    std::uint32_t magic;     // kRingMagic
    std::uint32_t reserved;  // 0 in a new file, not interpreted
    std::uint64_t head;      // position of the oldest chunk
    std::uint64_t maxSize;   // size of the ring in bytes, this header included
};
static_assert(sizeof(RingHeader) == 4 + 4 + 8 + 8);
static_assert(offsetof(RingHeader, head) == 8 && offsetof(RingHeader, maxSize) == 16);

inline constexpr std::uint64_t kRingDataStart = sizeof(RingHeader);

struct ChunkHeader {
    std::uint32_t magic;      // kChunkMagic
    std::uint32_t reserved;   // not interpreted
    std::uint64_t self;       // position at which this block was written
    std::uint64_t next;       // the next chunk's block; 0: this is the newest
    std::uint64_t prev;       // the previous chunk's block; without meaning in the oldest
    std::uint32_t count;      // entries in use, 0..kChunkEntries
    std::uint32_t reserved2;  // not interpreted
};
static_assert(sizeof(ChunkHeader) == 4 + 4 + 8 + 8 + 8 + 4 + 4);
static_assert(offsetof(ChunkHeader, self) == 8 && offsetof(ChunkHeader, next) == 16 &&
              offsetof(ChunkHeader, prev) == 24 && offsetof(ChunkHeader, count) == 32);

struct IndexEntry {
    std::uint64_t pos;     // of the first data byte; the ring's end stands for its start
    std::uint64_t length;  // data bytes
    SYSTEMTIME stamp;      // as the frame carried it
};
static_assert(sizeof(IndexEntry) == 8 + 8 + 16);
static_assert(offsetof(IndexEntry, length) == 8 && offsetof(IndexEntry, stamp) == 16);

// A chunk's index block. Entries from header.count on have no meaning.
struct ChunkBlock {
    ChunkHeader header;
    std::array<IndexEntry, kChunkEntries> entries;
};
inline constexpr std::uint32_t kChunkBlockSize = sizeof(ChunkBlock);
static_assert(kChunkBlockSize == sizeof(ChunkHeader) + kChunkEntries * sizeof(IndexEntry));
static_assert(kChunkBlockSize == 19240);

// A ring that holds less than one index block can't hold a record file.
inline constexpr std::uint64_t kSmallestRing = kRingDataStart + kChunkBlockSize;

}  // namespace marvolen
