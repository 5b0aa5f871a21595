#pragma once

#include "jpeg/jpeg_input.h"

#include <cstdint>

namespace marvolen {

// The bit reader of sequential scans on the fast path: 64 bits, refilled six bytes at a time.
//
// The next bit of the stream is the register's highest. The register holds bitsAvailable + 16
// valid bits; between reads bitsAvailable is 1..48, so that 16 bits can always be peeked. When
// it refills is part of what it promises: the search for a restart marker begins where the last
// refill stopped. After c bits since priming that is 6 + 6 x ceil(max(0, c - 31) / 48) bytes of
// entropy-coded data. Reading throws JpegFailure (-232) when the source fails. Small enough to be
// copied into a function's registers and back.
class FastBitReader {
public:
    explicit FastBitReader(JpegInput& newInput) : input(&newInput) {}

    // Drops what is held and takes the next six bytes of entropy-coded data.
    void PrimeForScan() {
        bits = input->ReadEntropy48() << 16;
        bitsAvailable = 32;
    }

    // Nothing to do before an MCU, nor to set the input behind what was taken.
    void BeginMcu() {}
    void Leave() {}

    // The next count (1..32) bits, of which the first 16 are valid, without consuming them.
    std::uint32_t Peek(int count) const { return static_cast<std::uint32_t>(bits >> (64 - count)); }
    std::uint32_t Peek16() const { return Peek(16); }

    // Consumes count (0..16) bits.
    void Consume(int count) {
        const int before = bitsAvailable;
        bitsAvailable -= count;
        if (bitsAvailable > 0) {
            bits <<= count;
            return;
        }
        // 16 valid bits stay on top, 48 new ones go right behind them.
        constexpr std::uint64_t kTop16 = 0xFFFF000000000000;
        bits = (((bits << before) & kTop16) | input->ReadEntropy48()) << -bitsAvailable;
        bitsAvailable += 48;
    }

    // The next count (1..16) bits.
    std::uint32_t ReadBits(int count) {
        const std::uint32_t value = Peek(count);
        Consume(count);
        return value;
    }

private:
    JpegInput* input;
    std::uint64_t bits = 0;
    std::int32_t bitsAvailable = 0;
};

}  // namespace marvolen
