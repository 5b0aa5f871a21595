#pragma once

#include "jpeg/jpeg_input.h"

#include <cstdint>

namespace marvolen {

// The bit reader of marker segments, of progressive scans and of the plain path: 32 bits, refilled
// two bytes at a time.
//
// The next bit of the stream is the register's highest. The register holds bitsAvailable + 16
// valid bits; between reads bitsAvailable is 1..16, so that 16 bits can always be peeked. When it
// refills is part of what it promises, as with FastBitReader: after c bits since priming it has
// taken 4 + 2 x ceil(max(0, c - 15) / 16) bytes. Reading throws JpegFailure (-232) when the source
// fails.
class PlainBitReader {
public:
    explicit PlainBitReader(JpegInput& newInput) : input(&newInput) {}

    // Drops what is held and takes the next four raw bytes: ready for marker segments.
    void PrimeForMarkers() {
        bits = 0;
        for (int i = 0; i < 4; ++i) bits = bits << 8 | input->ReadRaw();
        bitsAvailable = 16;
    }

    // Drops what is held and takes the next four bytes of entropy-coded data.
    void PrimeForScan() {
        bits = 0;
        for (int i = 0; i < 4; ++i) bits = bits << 8 | input->ReadEntropy();
        bitsAvailable = 16;
    }

    // Nothing to do before an MCU, nor to set the input behind what was taken.
    void BeginMcu() {}
    void Leave() {}

    // Puts the bytes that are held, real or invented, back into the input. Prime next. Segments end
    // with a whole byte, and with 16 or 8 bits available: fewer are never left behind one.
    void GiveBack() { input->Unread(bitsAvailable == 16 ? 4 : 3); }

    // The next count (1..16) bits of a marker segment.
    std::uint32_t ReadRawBits(int count) {
        const std::uint32_t value = bits >> (32 - count);
        Advance(count, [this] { return input->ReadRaw(); });
        return value;
    }

    // The next 16 bits of a scan, without consuming them.
    std::uint32_t Peek16() const { return bits >> 16; }

    // Consumes count (0..16) bits of a scan.
    void Consume(int count) {
        Advance(count, [this] { return input->ReadEntropy(); });
    }

    // The next count (1..16) bits of a scan.
    std::uint32_t ReadBits(int count) {
        const std::uint32_t value = bits >> (32 - count);
        Consume(count);
        return value;
    }

private:
    template <class ReadByte>
    void Advance(int count, ReadByte readByte) {
        const int before = bitsAvailable;
        bitsAvailable -= count;
        if (bitsAvailable > 0) {
            bits <<= count;
            return;
        }
        // 16 valid bits stay on top; two new bytes go right behind them.
        bits = (bits << before) & 0xFFFF0000;
        bits |= static_cast<std::uint32_t>(readByte()) << 8;
        bits |= readByte();
        bits <<= -bitsAvailable;
        bitsAvailable += 16;
    }

    JpegInput* input;
    std::uint32_t bits = 0;
    std::int32_t bitsAvailable = 0;
};

}  // namespace marvolen
