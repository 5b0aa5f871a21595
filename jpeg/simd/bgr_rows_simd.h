#pragma once

// Colour conversion and packing, the arithmetic of pixel_rows.cpp in one sweep from sample lines to
// rows of B, G, R, over the operations of an instruction set. Besides those on words Ops has
//
//   kPixels   pixels of a step, twice as many as Words has words
//   Load      kPixels bytes
//   LoadWide  half as many, each as a word
//   Even, Odd the bytes at even or odd places, as words
//   MultiplyRounded<c>      (value x c + 16384) >> 15
//   GreenOf(b, r)           (-22554 b + 18734 r + 32768) >> 16
//   Pack      two operands of Even's and Odd's kind to bytes, clamped, in the order that StoreBgr
//             takes
//   StoreBgr  kPixels pixels to memory

#include "jpeg/pixel_rows.h"

#include <cstring>

namespace marvolen::simd {

// What chroma samples add to Y.
template <class Ops>
struct Offsets {
    typename Ops::Words red;
    typename Ops::Words green;
    typename Ops::Words blue;
};

// The colour factors are split into a whole number and a fraction of 16 bits.
template <class Ops>
static inline Offsets<Ops> OffsetsOf(typename Ops::Words cb, typename Ops::Words cr) {
    const auto b = Ops::Subtract(cb, Ops::Constant(128));
    const auto r = Ops::Subtract(cr, Ops::Constant(128));
    return {Ops::Add(r, Ops::template MultiplyRounded<(91882 - 65536) / 2>(r)),
            Ops::Subtract(Ops::GreenOf(b, r), r),
            Ops::Add(Ops::Add(b, b), Ops::template MultiplyRounded<(116130 - 2 * 65536) / 2>(b))};
}

// One step of a row: the pixels at even places have other offsets than those at odd ones, unless
// they share a chroma sample.
template <class Ops>
static inline void PutPixels(const std::uint8_t* line, const Offsets<Ops>& even,
                             const Offsets<Ops>& odd, std::uint8_t* bgr) {
    const auto y = Ops::Load(line);
    const auto evenY = Ops::Even(y);
    const auto oddY = Ops::Odd(y);
    Ops::StoreBgr(bgr, Ops::Pack(Ops::Add(evenY, even.blue), Ops::Add(oddY, odd.blue)),
                  Ops::Pack(Ops::Add(evenY, even.green), Ops::Add(oddY, odd.green)),
                  Ops::Pack(Ops::Add(evenY, even.red), Ops::Add(oddY, odd.red)));
}

// One step from pixel start on of a gray row, or a row or two with Y sampled kHorizontal times
// across and kVertical times down.
template <class Ops, int kHorizontal, int kVertical>
static inline void BuildStep(const SampleLines& lines, int start, std::uint8_t* first,
                             std::uint8_t* second) {
    Offsets<Ops> even;
    Offsets<Ops> odd;
    if constexpr (kHorizontal == 0) {
        even = odd = {Ops::Zero(), Ops::Zero(), Ops::Zero()};
    } else if constexpr (kHorizontal == 1) {
        const auto cb = Ops::Load(lines.cb + start);
        const auto cr = Ops::Load(lines.cr + start);
        even = OffsetsOf<Ops>(Ops::Even(cb), Ops::Even(cr));
        odd = OffsetsOf<Ops>(Ops::Odd(cb), Ops::Odd(cr));
    } else {
        even = odd = OffsetsOf<Ops>(Ops::LoadWide(lines.cb + start / 2),
                                    Ops::LoadWide(lines.cr + start / 2));
    }
    PutPixels<Ops>(lines.y + start, even, odd, first + 3 * start);
    if constexpr (kVertical == 2) {
        PutPixels<Ops>(lines.yBelow + start, even, odd, second + 3 * start);
    }
}

// The pixels from start on, fewer than a step: through buffers that have room for one.
template <class Ops, int kHorizontal, int kVertical>
static void BuildRest(const SampleLines& lines, int start, int pixels, std::uint8_t* first,
                      std::uint8_t* second) {
    const auto count = static_cast<std::size_t>(pixels - start);
    std::uint8_t samples[4][Ops::kPixels] = {};
    std::uint8_t rows[2][3 * Ops::kPixels];
    std::memcpy(samples[0], lines.y + start, count);
    if constexpr (kVertical == 2) std::memcpy(samples[1], lines.yBelow + start, count);
    if constexpr (kHorizontal > 0) {
        const std::size_t chroma = (count + kHorizontal - 1) / kHorizontal;
        std::memcpy(samples[2], lines.cb + start / kHorizontal, chroma);
        std::memcpy(samples[3], lines.cr + start / kHorizontal, chroma);
    }
    BuildStep<Ops, kHorizontal, kVertical>({samples[0], samples[1], samples[2], samples[3]}, 0,
                                           rows[0], rows[1]);
    std::memcpy(first + 3 * start, rows[0], 3 * count);
    if constexpr (kVertical == 2) std::memcpy(second + 3 * start, rows[1], 3 * count);
}

// The kernel; kHorizontal 0 is gray.
template <class Ops, int kHorizontal, int kVertical>
static void BuildBgr(const SampleLines& lines, int pixels, std::uint8_t* first,
                     std::uint8_t* second) {
    int start = 0;
    for (; start + Ops::kPixels <= pixels; start += Ops::kPixels) {
        BuildStep<Ops, kHorizontal, kVertical>(lines, start, first, second);
    }
    if (start < pixels) {
        BuildRest<Ops, kHorizontal, kVertical>(lines, start, pixels, first, second);
    }
}

}  // namespace marvolen::simd
