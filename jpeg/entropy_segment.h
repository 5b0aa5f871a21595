#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace marvolen {

// The entropy-coded data up to the next marker or the end of the stream, unstuffed once, so that
// it can be read by the word (ITU-T T.81, B.1.1.5). Behind the data stands the filler that
// JpegInput would give: FF for ever in front of a marker, FF D9 by turns behind the last byte.
//
// Filler repeats every second byte, so a reader that comes to its end goes on an even number of
// bytes before.
class EntropySegment {
public:
    // Filler bytes behind the data.
    static constexpr std::size_t kFillerBytes = 2048;

    // Bytes that a buffer for any segment of the stream must have.
    static std::size_t BufferBytes(std::size_t streamBytes) { return streamBytes + kFillerBytes; }

    // Unstuffs from a position of the stream, which may lie behind its end, into the buffer, which
    // the caller keeps.
    void Load(std::span<const std::uint8_t> stream, std::uint64_t position, std::uint8_t* buffer);

    const std::uint8_t* Begin() const { return bytes; }
    // One past the last filler byte.
    const std::uint8_t* End() const { return bytes + count + kFillerBytes; }

    // Where the stream stands when that many bytes, filler included, have been taken one by one.
    std::uint64_t PositionBehind(std::uint64_t taken) const;

    // How many of the first taken bytes are filler.
    std::uint64_t FillerAmong(std::uint64_t taken) const {
        return taken > count ? taken - count : 0;
    }

private:
    std::span<const std::uint8_t> data;  // of the stream, from the segment's beginning
    std::uint64_t beginning = 0;         // its position
    std::uint64_t dataEnd = 0;           // position behind its data
    bool endsInMarker = false;
    const std::uint8_t* bytes = nullptr;
    std::size_t count = 0;  // bytes in front of the filler
};

}  // namespace marvolen
