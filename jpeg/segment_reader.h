#pragma once

#include "jpeg/bit_cursor.h"
#include "jpeg/entropy_segment.h"
#include "jpeg/jpeg_input.h"

#include <cstdint>

namespace marvolen {

// Bits of the entropy-coded data of a stream in memory. Whoever decodes with it takes cursor along
// and gives it back; no refill can fail.
//
// It stands in for a reader that refills as it goes, and whose last refill decides where the search
// for a restart marker begins and where a scan ends: Leave takes the input to where that one would
// have taken it.
class SegmentReader {
public:
    // How the reader refills that this one stands in for; see there.
    enum class Refills { By2Bytes, By6Bytes };

    // The input is borrowed; its source must stand in memory.
    SegmentReader(JpegInput& newInput, Refills newRefills) : input(newInput), refills(newRefills) {}

    // What segments are unstuffed into, of EntropySegment::BufferBytes of the stream. Borrowed.
    void SetBuffer(std::uint8_t* newBuffer) { buffer = newBuffer; }

    // Begins at the input's position, right behind a scan header.
    void BeginScan() {
        fillerBytes = 0;
        PrimeForScan();
    }

    // Loads the segment that begins at the input's position.
    void PrimeForScan() {
        segment.Load(input.Whole(), input.Position(), buffer);
        cursor = {segment.Begin(), 0, 0};
        rewound = 0;
    }

    // Call before each MCU, which may read up to kMcuBytes bytes.
    void BeginMcu() {
        if (!NearsEnd(cursor)) [[likely]]
            return;
        constexpr std::uint32_t kRewind = EntropySegment::kFillerBytes - kMcuBytes;
        static_assert(kRewind % 2 == 0);
        cursor.next -= kRewind;
        rewound += kRewind;
    }

    // Is BeginMcu more than nothing with the cursor there?
    bool NearsEnd(const BitCursor& at) const { return segment.End() - at.next < kMcuBytes; }

    // Sets the input behind the bytes that have been taken.
    void Leave() {
        const std::uint64_t taken = Taken();
        fillerBytes += segment.FillerAmong(taken);
        input.Seek(segment.PositionBehind(taken));
    }

    // Filler bytes among those that had been taken in this scan whenever it was left.
    std::uint64_t FillerBytes() const { return fillerBytes; }

    BitCursor cursor;

private:
    // The most that an MCU can take: 6 blocks of 64 codes and values, 31 bits each, with what
    // a refill looks ahead.
    static constexpr std::ptrdiff_t kMcuBytes = 1520;

    // The bytes that the other reader would have taken by now.
    std::uint64_t Taken() const {
        const auto refilled = static_cast<std::uint64_t>(cursor.next - segment.Begin()) + rewound;
        const std::uint64_t consumed = 8 * refilled - cursor.count;
        const auto beyond = [&](std::uint64_t bits) {
            return consumed > bits ? consumed - bits : 0;
        };
        return refills == Refills::By6Bytes ? 6 + (beyond(31) + 47) / 48 * 6
                                            : 4 + (beyond(15) + 15) / 16 * 2;
    }

    JpegInput& input;
    const Refills refills;
    std::uint8_t* buffer = nullptr;
    EntropySegment segment;
    std::uint64_t fillerBytes = 0;
    std::uint64_t rewound = 0;  // bytes that the cursor went back within the filler
};

}  // namespace marvolen
