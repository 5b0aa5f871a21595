#include "jpeg/dib_image.h"

#include "jpeg/jpeg_decoder.h"
#include "jpeg/memory_jpeg_source.h"

namespace marvolen {

void DibImage::Swap(DibImage& other) noexcept {
    std::swap(header, other.header);
    std::swap(pixels, other.pixels);
    std::swap(lastError, other.lastError);
}

void DibImage::InitHeader() {
    header.biSize = sizeof header;
    header.biPlanes = 1;
    header.biCompression = BI_RGB;
}

void DibImage::Reset() {
    header = {};
    pixels.reset();
    lastError = 0;
}

bool DibImage::Resize(int width, int height) {
    if (pixels != nullptr && header.biWidth == width && header.biHeight == height) return true;
    pixels.reset();
    const std::size_t size = StrideOf(width) * static_cast<std::size_t>(height);
    pixels.reset(static_cast<std::uint8_t*>(std::calloc(1, size)));
    if (pixels == nullptr) width = height = 0;
    header.biWidth = width;
    header.biHeight = height;
    header.biBitCount = 24;
    header.biSizeImage = pixels == nullptr ? 0 : static_cast<std::uint32_t>(size);
    return pixels != nullptr;
}

int DibImage::DecodeJpeg(const std::uint8_t* bytes, std::size_t count, JpegPath path,
                         JpegScale scale) {
    MemoryJpegSource source(bytes, count);
    JpegDecoder decoder(&source, path, scale);
    return Decode(decoder);
}

int DibImage::DecodeJpegFor(int width, int height, const std::uint8_t* bytes, std::size_t count) {
    MemoryJpegSource source(bytes, count);
    JpegDecoder decoder(&source, JpegPath::Fast);
    const auto halves = [](int whole, int wanted) { return whole % 2 == 0 && whole / 2 >= wanted; };
    if (halves(decoder.GetWidth(), width) && halves(decoder.GetHeight(), height)) {
        decoder.SetScale(JpegScale::Half);
    }
    return Decode(decoder);
}

int DibImage::Decode(JpegDecoder& decoder) {
    if (decoder.GetError() != 0 || decoder.StartDecompress() != 0) {
        lastError = decoder.GetError();
        return 0;
    }
    if (!Resize(decoder.OutputWidth(), decoder.OutputHeight())) {
        lastError = kJpegErrorMemory;
        return 0;
    }
    const auto stride = static_cast<std::ptrdiff_t>(Stride());
    decoder.ReadBgr(pixels.get() + stride * (Height() - 1), -stride);
    lastError = decoder.GetError();
    return 1;
}

}  // namespace marvolen
