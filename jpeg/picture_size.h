#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marvolen {

// Finds the sizes of pictures without making them.
//
// The answer is the decoder's own, short of its running out of memory: whether DibImage::DecodeJpeg
// would make a picture, and of which size. To give it, the decoder reads a sequential picture up to
// its entropy-coded data, and that of a progressive one, whose scans decide too. A sequential
// picture that begins as the one before did, as a camera's pictures do, isn't read again.
//
// One thread at a time uses an object.
class PictureSizeReader {
public:
    // Whether there would be a picture; width and height, in pixels, are set only then. Any bytes
    // are safe.
    bool Read(const std::uint8_t* bytes, std::size_t count, int& width, int& height);

private:
    std::vector<std::uint8_t> header;  // of the last sequential picture; empty when unknown
    bool isPicture = false;
    int headerWidth = 0;
    int headerHeight = 0;
};

}  // namespace marvolen
