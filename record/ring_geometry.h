#pragma once

// RingGeometry: distances and places in a ring's data area, [kRingDataStart, End()).
//
// End() itself is a position too: it is where a write that exactly filled the ring has left off,
// and means the same place as kRingDataStart.

#include "record/record_format.h"

#include <cstdint>

namespace marvolen {

class RingGeometry {
public:
    // A ring ending at position end; an end before the data area makes a ring that holds nothing.
    explicit constexpr RingGeometry(std::uint64_t end = kRingDataStart)
        : ringEnd(end < kRingDataStart ? kRingDataStart : end) {}

    constexpr std::uint64_t End() const { return ringEnd; }
    // Bytes of the data area.
    constexpr std::uint64_t Size() const { return ringEnd - kRingDataStart; }

    constexpr bool Holds(std::uint64_t position) const {
        return position >= kRingDataStart && position <= ringEnd;
    }

    // Where the byte at a held position lies.
    constexpr std::uint64_t Place(std::uint64_t position) const {
        return position == ringEnd ? kRingDataStart : position;
    }

    // Bytes from one held position forwards to another: 0 for the same place, less than Size().
    constexpr std::uint64_t Distance(std::uint64_t from, std::uint64_t to) const {
        const std::uint64_t start = Place(from);
        const std::uint64_t target = Place(to);
        return target >= start ? target - start : Size() - (start - target);
    }

    // The same to something that lies behind the block at from, and so can't be where it begins:
    // the same place is a whole turn away. 1..Size().
    constexpr std::uint64_t DistanceBehind(std::uint64_t from, std::uint64_t to) const {
        const std::uint64_t distance = Distance(from, to);
        return distance == 0 ? Size() : distance;
    }

    // Whether length bytes at a held position end before they run on into the block at head, which
    // they lie behind.
    constexpr bool Fits(std::uint64_t head, std::uint64_t position, std::uint64_t length) const {
        return length <= Size() - DistanceBehind(head, position);
    }

    // The position length bytes behind a held one, length being at most Size(). The ring's end is
    // not passed on to its start, as in RingFile::Seek.
    constexpr std::uint64_t Advance(std::uint64_t position, std::uint64_t length) const {
        const std::uint64_t beforeEnd = ringEnd - position;
        return length <= beforeEnd ? position + length : kRingDataStart + (length - beforeEnd);
    }

private:
    std::uint64_t ringEnd;
};

constexpr bool HeaderLiesAcrossEnd(const RingGeometry& ring, std::uint64_t position) {
    return position < ring.End() && ring.End() - position < sizeof(ChunkHeader);
}

}  // namespace marvolen
