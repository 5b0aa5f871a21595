// Decodes whatever it is given, on each path from sources that hand out their bytes in portions of
// different sizes, and from memory into a DibImage with every set of kernels: on one path all must
// see the same picture and the same error.

#include "jpeg/dib_image.h"
#include "jpeg/jpeg_decoder.h"
#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_source.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using marvolen::JpegPath;

// Larger pictures only make the fuzzer slow: what they run through, small ones do too.
constexpr int kMaxPixels = 256 * 256;

class PortionSource final : public marvolen::JpegSource {
public:
    PortionSource(const std::uint8_t* data, std::size_t size, std::ptrdiff_t newPortion)
        : current(data), end(data + size), portion(newPortion) {}

    int Read(void* destination, int maxCount, bool* endOfData) override {
        const std::ptrdiff_t count = std::min({portion, std::ptrdiff_t{maxCount}, end - current});
        std::copy_n(current, count, static_cast<std::uint8_t*>(destination));
        current += count;
        if (current == end) *endOfData = true;
        return static_cast<int>(count);
    }

private:
    const std::uint8_t* current;
    const std::uint8_t* end;
    std::ptrdiff_t portion;
};

struct Outcome {
    bool isLarge = false;  // and so wasn't decoded
    int error = 0;
    bool started = false;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bgr;  // of the rows that came, top row first

    bool operator==(const Outcome&) const = default;
};

Outcome Decode(const std::uint8_t* data, std::size_t size, JpegPath path, std::ptrdiff_t portion) {
    Outcome outcome;
    PortionSource source(data, size, portion);
    marvolen::JpegDecoder decoder(&source, path);
    outcome.width = decoder.GetWidth();
    outcome.height = decoder.GetHeight();
    outcome.isLarge = outcome.width * outcome.height > kMaxPixels;
    outcome.started = !outcome.isLarge && decoder.StartDecompress() == 0;
    const std::uint8_t* row = nullptr;
    int rowBytes = 0;
    while (outcome.started && decoder.ReadScanline(&row, &rowBytes) == 0) {
        if (rowBytes != outcome.width * decoder.GetBytesPerPixel()) std::abort();
        for (const std::uint8_t* end = row + rowBytes; row < end;) {
            if (decoder.GetBytesPerPixel() == 1) {
                outcome.bgr.insert(outcome.bgr.end(), 3, *row++);
            } else {
                outcome.bgr.insert(outcome.bgr.end(), {row[2], row[1], row[0]});
                row += 4;
            }
        }
    }
    outcome.error = decoder.GetError();
    return outcome;
}

// The bitmap must hold the rows that came, and be black below. At half scale it must come as far,
// and be the half that other kernels gave.
void CompareWithBitmap(const std::uint8_t* data, std::size_t size, JpegPath path,
                       const Outcome& expected, marvolen::DibImage& otherHalf) {
    marvolen::DibImage image;
    const bool shown = image.DecodeJpeg(data, size, path) == 1;
    if (shown != expected.started || image.LastError() != expected.error) std::abort();
    if (!shown) return;
    if (image.Width() != expected.width || image.Height() != expected.height) std::abort();
    marvolen::DibImage half;
    half.DecodeJpeg(data, size, path, marvolen::JpegScale::Half);
    if (half.LastError() != expected.error || half.Width() == 0) std::abort();
    if (otherHalf.Width() == 0) half.Swap(otherHalf);
    const std::uint8_t* const pixels = otherHalf.GetPixels();
    const bool isSame = half.Width() == 0 ||
                        std::equal(pixels, pixels + half.GetHeader().biSizeImage, half.GetPixels());
    if (!isSame) std::abort();
    const std::size_t rowBytes = 3 * static_cast<std::size_t>(expected.width);
    auto from = expected.bgr.begin();
    for (int y = image.Height() - 1; y >= 0; --y) {
        const std::uint8_t* line = image.GetPixels() + static_cast<std::size_t>(y) * image.Stride();
        const bool came = from != expected.bgr.end();
        const bool same = came ? std::equal(line, line + rowBytes, from)
                               : std::all_of(line, line + rowBytes, [](int b) { return b == 0; });
        if (!same) std::abort();
        if (came) from += static_cast<std::ptrdiff_t>(rowBytes);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
        const Outcome whole = Decode(data, size, path, PTRDIFF_MAX);
        for (const std::ptrdiff_t portion : {1, 13, 4095}) {
            if (!(Decode(data, size, path, portion) == whole)) std::abort();
        }
        marvolen::DibImage half;
        for (const marvolen::JpegKernels* kernels : marvolen::AvailableJpegKernels()) {
            marvolen::ForceJpegKernels(kernels);
            if (!whole.isLarge) CompareWithBitmap(data, size, path, whole, half);
        }
        marvolen::ForceJpegKernels(nullptr);
    }
    return 0;
}
