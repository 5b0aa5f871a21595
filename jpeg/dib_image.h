#pragma once

#include "jpeg/bitmap_info_header.h"
#include "jpeg/jpeg_path.h"
#include "jpeg/jpeg_scale.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>

namespace marvolen {

class JpegDecoder;

// The picture holder of a pane: a 24-bit bottom-up device-independent bitmap and the operation
// that fills it from a JPEG frame.
//
// Pixels are three bytes in the order B, G, R. Rows are padded to a multiple of four bytes
// (Stride), and the first row in memory is the bottom row of the picture; biSizeImage counts
// the padding. Padding bytes are 0.
//
// One thread at a time uses an object; different objects may decode on different threads without
// a lock. Objects can be moved, not copied.
class DibImage {
public:
    // An empty picture: header all zero, no pixels.
    DibImage() = default;
    ~DibImage() = default;

    DibImage(DibImage&& other) noexcept { Swap(other); }
    DibImage& operator=(DibImage&& other) noexcept {
        DibImage(std::move(other)).Swap(*this);
        return *this;
    }
    DibImage(const DibImage&) = delete;
    DibImage& operator=(const DibImage&) = delete;

    // Exchanges header, pixels and error code with the other image; no pixel is copied.
    void Swap(DibImage& other) noexcept;

    // Sets the fields that never change: biSize 40, biPlanes 1, biCompression BI_RGB.
    void InitHeader();

    // Back to an empty picture: header all zero, pixels freed, no error.
    void Reset();

    // The header. biWidth and biHeight are 0 as long as no picture was decoded.
    const BITMAPINFOHEADER& GetHeader() const { return header; }

    // The first byte of the bottom row, or null when there is no picture. Valid until a picture of
    // another size is decoded, Reset, a move, or the end of the object.
    std::uint8_t* GetPixels() { return pixels.get(); }
    const std::uint8_t* GetPixels() const { return pixels.get(); }

    // Size of the picture in pixels, 0 when there is none.
    int Width() const { return header.biWidth; }
    int Height() const { return header.biHeight; }

    // Bytes from one row to the row above it: 3 x width, rounded up to a multiple of 4.
    std::size_t Stride() const { return StrideOf(header.biWidth); }

    // The stride of a 24-bit bitmap that is width pixels wide.
    static constexpr std::size_t StrideOf(int width) {
        return (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    }

    // Decodes one JPEG frame of count bytes into this picture. Returns 1 when there is a picture
    // to draw, else 0. Never throws; any bytes are safe.
    //
    // A picture of the size already held reuses the pixel buffer; any other size replaces it with
    // a black one. A frame whose data goes bad part way still returns 1: the rows above that place
    // are new, the others keep what they held, and LastError says what happened. When 0 is
    // returned the picture is that of before; only where there is no memory for one of another
    // size (-233), it is empty: width, height and biSizeImage 0, no pixels.
    //
    // At half scale (fast path only) the picture held is half as large each way, rounded up;
    // everything else is the same.
    int DecodeJpeg(const std::uint8_t* bytes, std::size_t count, JpegPath path = JpegPath::Fast,
                   JpegScale scale = JpegScale::Full);

    // DecodeJpeg for a place of width x height pixels: at half scale where the picture
    // is at least twice as large both ways and its sides are even, so that half of them is exact;
    // else at full scale.
    int DecodeJpegFor(int width, int height, const std::uint8_t* bytes, std::size_t count);

    // What the last DecodeJpeg ran into: 0, or one of the codes of "jpeg/jpeg_error.h".
    int LastError() const { return lastError; }

private:
    struct Free {
        void operator()(std::uint8_t* block) const { std::free(block); }
    };

    int Decode(JpegDecoder& decoder);
    bool Resize(int width, int height);

    BITMAPINFOHEADER header;
    std::unique_ptr<std::uint8_t[], Free> pixels;
    int lastError = 0;
};

}  // namespace marvolen
