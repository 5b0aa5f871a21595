#pragma once

namespace marvolen {

// An abstract byte source that a JpegDecoder pulls its stream from, in portions of up to 4096
// bytes. One thread uses a source and its decoder. No operation may throw.
class JpegSource {
public:
    virtual ~JpegSource() = default;

    // Copies up to maxCount bytes to destination and returns how many, or -1 on a read failure
    // (the decoder then fails with -232, as it does if more than maxCount is returned). Sets
    // *endOfData to true once the data is exhausted, together with the last bytes or later, and
    // never sets it back. 0 bytes without the end are allowed; the decoder asks again at once.
    virtual int Read(void* destination, int maxCount, bool* endOfData) = 0;

    // Called once, when a decoder takes the source, before the first Read.
    virtual void Begin() {}

    // Called once, when the decoder lets go of the source: on failure or on its destruction.
    virtual void End() {}
};

}  // namespace marvolen
