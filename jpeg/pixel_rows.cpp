// Colour conversion (JFIF: ITU-R BT.601, Cb and Cr around 128) with chroma samples repeated over
// the pixels they cover.
//
// Each chroma sample gives three offsets, in 16-bit fixed point:
//   red    (91882 Cr + 32768) >> 16                  1.402
//   green  (-22554 Cb - 46802 Cr + 32768) >> 16      0.34414, 0.71414
//   blue   (116130 Cb + 32768) >> 16                 1.772
// that are added to the Y of each of its pixels and clamped. Rows are built in strips, so that the
// loops run over arrays of a fixed length that a compiler makes vector code of; 8-bit lanes where
// possible, for there are more of them.

#include "jpeg/pixel_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace marvolen {
namespace {

constexpr std::size_t kStrip = 64;  // chroma samples

template <std::size_t N>
using Samples = std::array<std::uint8_t, N>;
template <std::size_t N>
using Words = std::array<std::int16_t, N>;

// What N chroma samples do to one colour. An offset is kept as two magnitudes, one of which is 0:
// y + up - down, each step saturating at 255 and 0, is the clamped sum in 8 bits.
template <std::size_t N>
struct Offsets {
    Samples<N> up;
    Samples<N> down;

    void Set(std::size_t i, int offset) {
        const auto word = static_cast<std::int16_t>(offset);
        up[i] = static_cast<std::uint8_t>(std::max(word, std::int16_t{0}));
        down[i] =
            static_cast<std::uint8_t>(std::max(static_cast<std::int16_t>(-word), std::int16_t{0}));
    }
    Samples<N> Apply(const Samples<N>& y) const {
        Samples<N> shade;
        for (std::size_t i = 0; i < N; ++i) {
            const auto room = static_cast<std::uint8_t>(~y[i]);
            const auto raised = static_cast<std::uint8_t>(y[i] + std::min(up[i], room));
            shade[i] = static_cast<std::uint8_t>(raised - std::min(down[i], raised));
        }
        return shade;
    }
};

template <std::size_t N>
struct ColourOffsets {
    Offsets<N> red;
    Offsets<N> green;
    Offsets<N> blue;
};

// (value x multiplier + 32768) >> 16 for -128 <= value < 128: half of the doubled value's high
// product, rounded up, which needs no more than 16 bits.
template <std::size_t N>
Words<N> Scaled(const Words<N>& values, int multiplier) {
    Words<N> high;
    for (std::size_t i = 0; i < N; ++i) {
        const auto twice = static_cast<std::int16_t>(values[i] * 2);
        high[i] = static_cast<std::int16_t>((twice * multiplier) >> 16);
    }
    Words<N> scaled;
    for (std::size_t i = 0; i < N; ++i) {
        scaled[i] = static_cast<std::int16_t>((high[i] + 1) >> 1);
    }
    return scaled;
}

// The colour factors are split into a whole number and a multiplier of 16 bits.
template <std::size_t N>
ColourOffsets<N> ChromaOffsets(const Samples<N>& cb, const Samples<N>& cr) {
    constexpr std::int16_t kGreenCb = -22554;
    constexpr std::int16_t kGreenCr = -46802 + 65536;
    Words<N> b;
    Words<N> r;
    Words<N> green;
    for (std::size_t i = 0; i < N; ++i) {
        b[i] = static_cast<std::int16_t>(cb[i] - 128);
        r[i] = static_cast<std::int16_t>(cr[i] - 128);
    }
    for (std::size_t i = 0; i < N; ++i) {
        green[i] = static_cast<std::int16_t>((kGreenCb * b[i] + kGreenCr * r[i] + 32768) >> 16);
    }
    const Words<N> red = Scaled(r, 91882 - 65536);
    const Words<N> blue = Scaled(b, 116130 - 2 * 65536);
    ColourOffsets<N> offsets;
    for (std::size_t i = 0; i < N; ++i) {
        offsets.red.Set(i, static_cast<std::int16_t>(red[i] + r[i]));
        offsets.green.Set(i, static_cast<std::int16_t>(green[i] - r[i]));
        offsets.blue.Set(i, static_cast<std::int16_t>(blue[i] + 2 * b[i]));
    }
    return offsets;
}

// a[0], b[0], a[1], b[1], ...
template <class T, std::size_t N>
std::array<T, 2 * N> Interleave(const std::array<T, N>& a, const std::array<T, N>& b) {
    std::array<T, 2 * N> both;
    for (std::size_t i = 0; i < N; ++i) {
        both[2 * i] = a[i];
        both[2 * i + 1] = b[i];
    }
    return both;
}

template <std::size_t N>
Samples<2 * N> Twice(const Samples<N>& values) {
    return Interleave(values, values);
}

template <std::size_t N>
ColourOffsets<2 * N> Twice(const ColourOffsets<N>& offsets) {
    return {{Twice(offsets.red.up), Twice(offsets.red.down)},
            {Twice(offsets.green.up), Twice(offsets.green.down)},
            {Twice(offsets.blue.up), Twice(offsets.blue.down)}};
}

// Writes the first count of N pixels: R, G, B and the fourth byte, which is 0.
template <std::size_t N>
void PutPixels(const std::uint8_t* line, const ColourOffsets<N>& offsets, std::size_t count,
               std::uint8_t* out) {
    Samples<N> y{};
    std::memcpy(y.data(), line, count);
    constexpr Samples<N> kFourth{};
    using Pairs = std::array<std::uint16_t, N>;
    const auto redGreen =
        std::bit_cast<Pairs>(Interleave(offsets.red.Apply(y), offsets.green.Apply(y)));
    const auto blueFourth = std::bit_cast<Pairs>(Interleave(offsets.blue.Apply(y), kFourth));
    const auto pixels = Interleave(redGreen, blueFourth);
    std::memcpy(out, pixels.data(), 4 * count);
}

}  // namespace

template <int Horizontal, int Vertical>
void BuildColour(const SampleLines& lines, int chromaSamples, std::uint8_t* first,
                 std::uint8_t* second) {
    const auto total = static_cast<std::size_t>(chromaSamples);
    Samples<kStrip> cb{};
    Samples<kStrip> cr{};
    for (std::size_t done = 0; done < total; done += kStrip) {
        const std::size_t count = std::min(kStrip, total - done);
        std::memcpy(cb.data(), lines.cb + done, count);
        std::memcpy(cr.data(), lines.cr + done, count);
        const auto put = [&](const auto& offsets) {
            const std::size_t start = done * Horizontal;
            const std::size_t pixels = count * Horizontal;
            PutPixels(lines.y + start, offsets, pixels, first + 4 * start);
            if constexpr (Vertical == 2) {
                PutPixels(lines.yBelow + start, offsets, pixels, second + 4 * start);
            }
        };
        if constexpr (Horizontal == 2) {
            put(Twice(ChromaOffsets(cb, cr)));
        } else {
            put(ChromaOffsets(cb, cr));
        }
    }
}

template void BuildColour<1, 1>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColour<2, 1>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColour<1, 2>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColour<2, 2>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);

void BuildGrayBgrPortable(const SampleLines& lines, int pixels, std::uint8_t* first,
                          std::uint8_t* /*second*/) {
    for (int i = 0; i < pixels; ++i, first += 3) first[0] = first[1] = first[2] = lines.y[i];
}

template <int Horizontal, int Vertical>
void BuildColourBgrPortable(const SampleLines& lines, int pixels, std::uint8_t* first,
                            std::uint8_t* second) {
    constexpr int kPart = static_cast<int>(kStrip) * Horizontal;
    std::array<std::uint8_t, 4 * kPart> upper;
    std::array<std::uint8_t, 4 * kPart> lower;
    const auto pack = [](const std::uint8_t* row, int count, std::uint8_t* bgr) {
        for (int i = 0; i < count; ++i, row += 4, bgr += 3) {
            bgr[0] = row[2];
            bgr[1] = row[1];
            bgr[2] = row[0];
        }
    };
    // The last pixel of an odd row has half of a chroma sample, and no second pixel of Y to read.
    std::array<std::uint8_t, kPart> y{};
    std::array<std::uint8_t, kPart> yBelow{};
    for (int done = 0; done < pixels; done += kPart) {
        const int count = std::min(kPart, pixels - done);
        const int samples = (count + Horizontal - 1) / Horizontal;
        const auto from = [&](const std::uint8_t* line) { return line + done / Horizontal; };
        std::copy_n(lines.y + done, count, y.begin());
        if constexpr (Vertical == 2) std::copy_n(lines.yBelow + done, count, yBelow.begin());
        BuildColour<Horizontal, Vertical>({y.data(), yBelow.data(), from(lines.cb), from(lines.cr)},
                                          samples, upper.data(), lower.data());
        pack(upper.data(), count, first + 3 * done);
        if constexpr (Vertical == 2) pack(lower.data(), count, second + 3 * done);
    }
}

template void BuildColourBgrPortable<1, 1>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColourBgrPortable<2, 1>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColourBgrPortable<1, 2>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);
template void BuildColourBgrPortable<2, 2>(const SampleLines&, int, std::uint8_t*, std::uint8_t*);

}  // namespace marvolen
