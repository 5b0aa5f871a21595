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

int DibImage::DecodeJpeg(const std::uint8_t* bytes, std::size_t count, JpegPath path) {
    MemoryJpegSource source(bytes, count);
    JpegDecoder decoder(&source, path);
    if (decoder.GetError() != 0 || decoder.StartDecompress() != 0) {
        lastError = decoder.GetError();
        return 0;
    }
    if (!Resize(decoder.GetWidth(), decoder.GetHeight())) {
        lastError = kJpegErrorMemory;
        return 0;
    }
    const JpegKernels& kernels = ActiveJpegKernels();
    JpegKernels::PackRow pack = nullptr;
    switch (decoder.GetComponents()) {
        case 1:
            pack = kernels.packGray;
            break;
        case 3:
            pack = kernels.packColour;
            break;
        default:
            lastError = kJpegErrorComponents;
            return 0;
    }
    const int bytesPerPixel = decoder.GetBytesPerPixel();
    std::uint8_t* line = pixels.get() + Stride() * static_cast<std::size_t>(Height());
    const std::uint8_t* row = nullptr;
    int rowBytes = 0;
    while (decoder.ReadScanline(&row, &rowBytes) == 0) {
        line -= Stride();
        pack(row, rowBytes / bytesPerPixel, line);
    }
    lastError = decoder.GetError();
    return 1;
}

}  // namespace marvolen
