#pragma once

#include "jpeg/jpeg_source.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace marvolen {

// The byte level of the decoder: a 4096-byte window onto the source, or the whole of a source that
// stands in memory, read either raw (marker segments) or as entropy-coded data with stuffed zeros
// removed (ITU-T T.81, B.1.1.5).
//
// The stream never ends: behind the last byte of the source follow the bytes FF D9, the
// end-of-image marker, over and over. Such invented bytes are read like any raw byte, but in
// entropy-coded data they are plain data: never a marker, never the start of a stuffed pair.
//
// Every operation may have to refill and then throws JpegFailure (-232) when the source fails.
class JpegInput {
public:
    static constexpr int kBufferBytes = 4096;
    static constexpr int kEdgeBytes = 128;
    // How many bytes can always be unread.
    static constexpr int kMaxUnread = 4;

    JpegInput() = default;
    JpegInput(const JpegInput&) = delete;
    JpegInput& operator=(const JpegInput&) = delete;

    // Starts reading from newSource, which the caller keeps alive.
    void Attach(JpegSource* newSource);

    // The bytes of a source that stands in memory; empty for any other.
    std::span<const std::uint8_t> Whole() const { return whole; }
    // Of a source in memory: how many bytes have been read, invented ones included.
    std::uint64_t Position() const {
        return static_cast<std::uint64_t>(readPointer - whole.data()) + inventedBytes;
    }
    // Goes to a position of a source in memory, also one behind its end.
    void Seek(std::uint64_t position);

    // The next byte as it stands.
    std::uint8_t ReadRaw() {
        if (bytesAvailable == 0) return ReadRawSlow();
        --bytesAvailable;
        return *readPointer++;
    }

    // The next byte of entropy-coded data. FF 00 reads as FF. A marker is not consumed: FF is
    // returned, now and at every further call.
    std::uint8_t ReadEntropy();

    // The next six bytes of entropy-coded data, the first in bits 47..40.
    std::uint64_t ReadEntropy48() {
        if (bytesAvailable >= kFastBytes) {
            std::uint64_t eight;
            std::memcpy(&eight, readPointer, sizeof eight);
            if constexpr (std::endian::native == std::endian::little) eight = ByteSwap(eight);
            const std::uint64_t six = eight >> 16;
            if (!HasByteFf(six)) {
                readPointer += 6;
                bytesAvailable -= 6;
                return six;
            }
        }
        return ReadEntropy48Slow();
    }

    // How many bytes ReadEntropy has returned in place of a marker or behind the end of the data.
    std::uint64_t FillerBytes() const { return fillerBytes; }

    // Puts the last count bytes that were read (at most kMaxUnread, real or invented) back in
    // front of the read position.
    void Unread(int count);

private:
    static constexpr int kFastBytes = 12;

    static constexpr std::uint64_t ByteSwap(std::uint64_t value) {
        value = (value & 0x00FF00FF00FF00FF) << 8 | (value >> 8 & 0x00FF00FF00FF00FF);
        value = (value & 0x0000FFFF0000FFFF) << 16 | (value >> 16 & 0x0000FFFF0000FFFF);
        return value << 32 | value >> 32;
    }
    // Is one of the six low bytes FF? (The carry trick for a zero byte, on the complement.)
    static constexpr bool HasByteFf(std::uint64_t six) {
        const std::uint64_t inverse = ~six & 0x0000FFFFFFFFFFFF;
        return ((inverse - 0x0000010101010101) & ~inverse & 0x0000808080808080) != 0;
    }

    std::uint8_t* BufferStart() { return storage.data() + kEdgeBytes; }
    std::uint8_t ReadRawSlow();
    std::uint64_t ReadEntropy48Slow();
    void Fill();

    // The push-back area, the buffer and its tail.
    std::array<std::uint8_t, kEdgeBytes + kBufferBytes + kEdgeBytes> storage{};
    JpegSource* source = nullptr;
    std::span<const std::uint8_t> whole;
    const std::uint8_t* readPointer = storage.data() + kEdgeBytes;
    std::int32_t bytesAvailable = 0;
    bool endOfInput = false;
    // Bytes invented so far; its lowest bit alternates between FF (0) and D9 (1).
    std::uint64_t inventedBytes = 0;
    std::uint64_t fillerBytes = 0;
};

}  // namespace marvolen
