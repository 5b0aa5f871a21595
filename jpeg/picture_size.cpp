#include "jpeg/picture_size.h"

#include "jpeg/jpeg_decoder.h"
#include "jpeg/marker_reader.h"
#include "jpeg/memory_jpeg_source.h"

#include <algorithm>

namespace marvolen {
namespace {

// Bytes from the start of the picture to its entropy-coded data, where nothing else decides: 0 for
// a progressive picture, and for one that isn't plain segment behind segment. Segments whose
// content contradicts their length don't matter: the decoder refuses them whatever comes behind.
std::size_t HeaderLength(const std::uint8_t* bytes, std::size_t count) {
    if (count < 2 || bytes[0] != 0xFF || bytes[1] != kMarkerSoi) return 0;
    std::size_t at = 2;
    while (at + 4 <= count && bytes[at] == 0xFF) {
        const std::uint8_t code = bytes[at + 1];
        const bool hasLength =
            code >= kMarkerSof0 && code != 0xFF && (code < kMarkerRst0 || code >= kMarkerSos);
        if (!hasLength || code == kMarkerSof2) return 0;
        at += 2U + (static_cast<std::size_t>(bytes[at + 2]) << 8 | bytes[at + 3]);
        if (code == kMarkerSos) return at <= count ? at : 0;
    }
    return 0;
}

}  // namespace

bool PictureSizeReader::Read(const std::uint8_t* bytes, std::size_t count, int& width,
                             int& height) {
    const bool known = !header.empty() && header.size() <= count &&
                       std::equal(header.begin(), header.end(), bytes);
    if (!known) {
        MemoryJpegSource source(bytes, count);
        JpegDecoder decoder(&source, JpegPath::Fast);
        isPicture = decoder.GetError() == 0 && decoder.StartDecompress() == 0;
        headerWidth = decoder.GetWidth();
        headerHeight = decoder.GetHeight();
        header.assign(bytes, bytes + HeaderLength(bytes, count));
    }
    if (isPicture) {
        width = headerWidth;
        height = headerHeight;
    }
    return isPicture;
}

}  // namespace marvolen
