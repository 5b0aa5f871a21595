// Colour conversion (JFIF: ITU-R BT.601, Cb and Cr around 128) with chroma samples repeated over
// the pixels they cover.
//
// Each chroma sample gives three offsets, in 16-bit fixed point:
//   red    (91882 Cr + 32768) >> 16                  1.402
//   green  (-22554 Cb - 46802 Cr + 32768) >> 16      0.34414, 0.71414
//   blue   (116130 Cb + 32768) >> 16                 1.772
// that are added to the Y of each of its pixels and clamped. The offsets fit 16 bits; loops run
// over arrays of fixed length, which is what a compiler makes vector code of.

#include "jpeg/pixel_rows.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace marvolen {
namespace {

constexpr std::size_t kBlock = 64;

template <std::size_t N>
struct Offsets {
    std::array<std::int16_t, N> red;
    std::array<std::int16_t, N> green;
    std::array<std::int16_t, N> blue;
};

/// The offsets of the eight chroma samples of a row.
inline Offsets<8> ChromaOffsets(const std::uint8_t* cb, const std::uint8_t* cr) {
    Offsets<8> offsets;
    for (std::size_t i = 0; i < 8; ++i) {
        const int b = cb[i] - 128;
        const int r = cr[i] - 128;
        offsets.red[i] = static_cast<std::int16_t>((91882 * r + 32768) >> 16);
        offsets.green[i] = static_cast<std::int16_t>((-22554 * b - 46802 * r + 32768) >> 16);
        offsets.blue[i] = static_cast<std::int16_t>((116130 * b + 32768) >> 16);
    }
    return offsets;
}

inline std::array<std::int16_t, 16> Twice(const std::array<std::int16_t, 8>& values) {
    std::array<std::int16_t, 16> twice;
    for (std::size_t i = 0; i < 8; ++i) twice[2 * i] = twice[2 * i + 1] = values[i];
    return twice;
}

inline Offsets<16> Twice(const Offsets<8>& offsets) {
    return {Twice(offsets.red), Twice(offsets.green), Twice(offsets.blue)};
}

template <std::size_t N>
std::array<std::uint8_t, N> Shade(const std::array<std::uint8_t, N>& y,
                                  const std::array<std::int16_t, N>& offsets) {
    std::array<std::uint8_t, N> shade;
    for (std::size_t i = 0; i < N; ++i) {
        const auto sum = static_cast<std::int16_t>(y[i] + offsets[i]);
        shade[i] = static_cast<std::uint8_t>(std::clamp(sum, std::int16_t{0}, std::int16_t{255}));
    }
    return shade;
}

/// Writes N pixels: R, G, B and the fourth byte, which is 0.
template <std::size_t N>
void PutPixels(const std::array<std::uint8_t, N>& y, const Offsets<N>& offsets, std::uint8_t* out) {
    const std::array<std::uint8_t, N> red = Shade(y, offsets.red);
    const std::array<std::uint8_t, N> green = Shade(y, offsets.green);
    const std::array<std::uint8_t, N> blue = Shade(y, offsets.blue);
    std::array<std::uint8_t, 4 * N> pixels;
    for (std::size_t i = 0; i < N; ++i) {
        pixels[4 * i] = red[i];
        pixels[4 * i + 1] = green[i];
        pixels[4 * i + 2] = blue[i];
        pixels[4 * i + 3] = 0;
    }
    std::memcpy(out, pixels.data(), pixels.size());
}

inline std::array<std::uint8_t, 8> Luma(const std::uint8_t* y) {
    std::array<std::uint8_t, 8> luma;
    std::memcpy(luma.data(), y, 8);
    return luma;
}

/// A row of two blocks that stand side by side.
inline std::array<std::uint8_t, 16> LumaPair(const std::uint8_t* left) {
    std::array<std::uint8_t, 16> luma;
    std::memcpy(luma.data(), left, 8);
    std::memcpy(luma.data() + 8, left + kBlock, 8);
    return luma;
}

}  // namespace

void BuildGrayPortable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t*) {
    for (int mcu = 0; mcu < mcus; ++mcu, samples += kBlock, first += 8) {
        std::memcpy(first, samples + 8 * p, 8);
    }
}

void BuildY1x1Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t*) {
    for (int mcu = 0; mcu < mcus; ++mcu, samples += 3 * kBlock, first += 4 * 8) {
        const std::uint8_t* line = samples + 8 * p;
        PutPixels(Luma(line), ChromaOffsets(line + kBlock, line + 2 * kBlock), first);
    }
}

void BuildY2x1Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t*) {
    for (int mcu = 0; mcu < mcus; ++mcu, samples += 4 * kBlock, first += 4 * 16) {
        const std::uint8_t* line = samples + 8 * p;
        const auto offsets = Twice(ChromaOffsets(line + 2 * kBlock, line + 3 * kBlock));
        PutPixels(LumaPair(line), offsets, first);
    }
}

void BuildY1x2Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second) {
    for (int mcu = 0; mcu < mcus; ++mcu, samples += 4 * kBlock) {
        // The blocks of Y stand one below the other, so that p counts through both.
        const std::uint8_t* luma = samples + 8 * p;
        const std::uint8_t* chroma = samples + 2 * kBlock + 8 * (p / 2);
        const auto offsets = ChromaOffsets(chroma, chroma + kBlock);
        PutPixels(Luma(luma), offsets, first + 4 * 8 * mcu);
        PutPixels(Luma(luma + 8), offsets, second + 4 * 8 * mcu);
    }
}

void BuildY2x2Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second) {
    const int upperOrLower = p < 8 ? 8 * p : 2 * static_cast<int>(kBlock) + 8 * (p - 8);
    for (int mcu = 0; mcu < mcus; ++mcu, samples += 6 * kBlock) {
        const std::uint8_t* luma = samples + upperOrLower;
        const std::uint8_t* chroma = samples + 4 * kBlock + 8 * (p / 2);
        const auto offsets = Twice(ChromaOffsets(chroma, chroma + kBlock));
        PutPixels(LumaPair(luma), offsets, first + 4 * 16 * mcu);
        PutPixels(LumaPair(luma + 8), offsets, second + 4 * 16 * mcu);
    }
}

void PackGrayPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr) {
    for (int i = 0; i < pixels; ++i, bgr += 3) bgr[0] = bgr[1] = bgr[2] = row[i];
}

void PackColourPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr) {
    for (int i = 0; i < pixels; ++i, row += 4, bgr += 3) {
        bgr[0] = row[2];
        bgr[1] = row[1];
        bgr[2] = row[0];
    }
}

}  // namespace marvolen
