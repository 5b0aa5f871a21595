#pragma once

#include <cstdint>
#include <span>

namespace marvolen {

// An abstract byte source that a JpegDecoder pulls its stream from, in portions of up to 4096
// bytes, or takes whole from memory. One thread uses a source and its decoder. No operation may
// throw.
class JpegSource {
public:
    virtual ~JpegSource() = default;

    // Copies up to maxCount bytes to destination and returns how many, or -1 on a read failure
    // (the decoder then fails with -232, as it does if more than maxCount is returned). Sets
    // *endOfData to true once the data is exhausted, together with the last bytes or later, and
    // never sets it back. 0 bytes without the end are allowed; the decoder asks again at once.
    virtual int Read(void* destination, int maxCount, bool* endOfData) = 0;

    // All bytes of the stream, where they stand in memory one after the other; they must stay
    // unchanged until End. The decoder then never calls Read, and is faster. Empty (the default)
    // where the bytes come in portions.
    virtual std::span<const std::uint8_t> WholeData() const { return {}; }

    // Called once, when a decoder takes the source, before the first Read.
    virtual void Begin() {}

    // Called once, when the decoder lets go of the source: on failure or on its destruction.
    virtual void End() {}
};

}  // namespace marvolen
