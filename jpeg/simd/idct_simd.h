#pragma once

// The inverse DCTs of idct_fast.cpp and idct_half.cpp, line by line the same arithmetic, over the
// operations of an instruction set. Ops has
//
//   kBlocks   how many blocks, 1 or 2, it works on at a time
//   Words     eight 16-bit words of each of these blocks
//   Bytes     sixteen bytes of each
//   Zero, Add, Subtract, Scale   on words, wrapping; Scale is ScaleWrapped
//   LoadTwo   two lines of dequantised coefficients
//   Low16, High16, Low32, ...    the low or high halves of two operands, word by word in turns
//   Low8, High8                  the same for bytes
//   Samples   the samples of two operands: those of the first, those of the second
//   Fill, Store8, Store4         lines of samples to memory
//
// A block of one word of Ops never mixes with the other's: each stays in its part of the register.

#include "jpeg/idct.h"

namespace marvolen::simd {

// Zigzag positions before the first outside the 4 x 4 corner.
constexpr int kCorner = 10;

static inline int Last(const IdctBlock& first, const IdctBlock& second) {
    return first.end > second.end ? first.end : second.end;
}

// Dequantised lines, of which the first kFilled, 4 or 8, are not all 0. What is known to be 0 falls
// out of the arithmetic when it is compiled.
template <class Ops, int kFilled>
static inline void LoadLines(const IdctBlock& first, const IdctBlock& second,
                             typename Ops::Words* x) {
    for (int line = 0; line < kFilled; line += 2) Ops::LoadTwo(first, second, line, x + line);
    for (int line = kFilled; line < 8; ++line) x[line] = Ops::Zero();
}

// The one-dimensional transform down the columns of eight lines.
template <class Ops>
static inline void TransformColumns(typename Ops::Words* x) {
    using Words = typename Ops::Words;
    constexpr int kSqrt2 = 23170;
    constexpr int kTwoCos1 = 30273;
    constexpr int kMinusTwoSin1 = -12540;

    const Words sum04 = Ops::Add(x[0], x[4]);
    const Words difference04 = Ops::Subtract(x[0], x[4]);
    const Words sum26 = Ops::Add(x[2], x[6]);
    const Words scaled26 =
        Ops::Subtract(Ops::template Scale<kSqrt2>(Ops::Subtract(x[2], x[6])), sum26);
    const Words e0 = Ops::Add(sum04, sum26);
    const Words e3 = Ops::Subtract(sum04, sum26);
    const Words e1 = Ops::Add(difference04, scaled26);
    const Words e2 = Ops::Subtract(difference04, scaled26);

    const Words z13 = Ops::Add(x[5], x[3]);
    const Words z10 = Ops::Subtract(x[5], x[3]);
    const Words z11 = Ops::Add(x[1], x[7]);
    const Words z12 = Ops::Subtract(x[1], x[7]);
    const Words t7 = Ops::Add(z11, z13);
    const Words t11 = Ops::template Scale<kSqrt2>(Ops::Subtract(z11, z13));
    const Words t10 =
        Ops::Add(Ops::template Scale<-kTwoCos1>(z10), Ops::template Scale<kMinusTwoSin1>(z12));
    const Words t12 =
        Ops::Add(Ops::template Scale<kMinusTwoSin1>(z10), Ops::template Scale<kTwoCos1>(z12));
    const Words t6 = Ops::Subtract(t12, t7);
    const Words t5 = Ops::Subtract(t11, t6);
    const Words t4 = Ops::Add(t10, t5);

    x[0] = Ops::Add(e0, t7);
    x[1] = Ops::Add(e1, t6);
    x[2] = Ops::Add(e2, t5);
    x[3] = Ops::Subtract(e3, t4);
    x[4] = Ops::Add(e3, t4);
    x[5] = Ops::Subtract(e2, t5);
    x[6] = Ops::Subtract(e1, t6);
    x[7] = Ops::Subtract(e0, t7);
}

// Columns to lines, where only the first kFilled columns, 4 or 8, are not all 0.
template <class Ops, int kFilled>
static inline void Transpose(typename Ops::Words* x) {
    using Words = typename Ops::Words;
    // Columns 0 to 3, two lines each; then four; then eight.
    const Words l01 = Ops::Low16(x[0], x[1]), l23 = Ops::Low16(x[2], x[3]);
    const Words l45 = Ops::Low16(x[4], x[5]), l67 = Ops::Low16(x[6], x[7]);
    const Words h01 = Ops::High16(x[0], x[1]), h23 = Ops::High16(x[2], x[3]);
    const Words h45 = Ops::High16(x[4], x[5]), h67 = Ops::High16(x[6], x[7]);
    const auto join = [](Words a, Words b, Words c, Words d, Words* out) {
        const Words upper = Ops::Low32(a, b), lower = Ops::Low32(c, d);
        out[0] = Ops::Low64(upper, lower);
        out[1] = Ops::High64(upper, lower);
        const Words upperHigh = Ops::High32(a, b), lowerHigh = Ops::High32(c, d);
        out[2] = Ops::Low64(upperHigh, lowerHigh);
        out[3] = Ops::High64(upperHigh, lowerHigh);
    };
    join(l01, l23, l45, l67, x);
    if constexpr (kFilled == 8) {
        join(h01, h23, h45, h67, x + 4);
    } else {
        x[4] = x[5] = x[6] = x[7] = Ops::Zero();
    }
}

// Eight columns of results to lines of samples.
template <class Ops>
static inline void StoreSamples(const typename Ops::Words* x, const IdctBlock& first,
                                const IdctBlock& second, std::ptrdiff_t stride) {
    using Bytes = typename Ops::Bytes;
    // Columns k and k + 4; then lines of two, four and eight of them.
    const Bytes s04 = Ops::Samples(x[0], x[4]), s15 = Ops::Samples(x[1], x[5]);
    const Bytes s26 = Ops::Samples(x[2], x[6]), s37 = Ops::Samples(x[3], x[7]);
    const Bytes s01 = Ops::Low8(s04, s15), s45 = Ops::High8(s04, s15);
    const Bytes s23 = Ops::Low8(s26, s37), s67 = Ops::High8(s26, s37);
    const Bytes upper03 = Ops::Low16(s01, s23), lower03 = Ops::High16(s01, s23);
    const Bytes upper47 = Ops::Low16(s45, s67), lower47 = Ops::High16(s45, s67);
    std::uint8_t* const firstSamples = first.samples;
    std::uint8_t* const secondSamples = second.samples;
    const auto store = [=](std::ptrdiff_t line, Bytes twoLines) {
        Ops::Store8(twoLines, firstSamples + line * stride, secondSamples + line * stride, stride);
    };
    store(0, Ops::Low32(upper03, upper47));
    store(2, Ops::High32(upper03, upper47));
    store(4, Ops::Low32(lower03, lower47));
    store(6, Ops::High32(lower03, lower47));
}

// Both passes, where only the first kFilled lines and columns of coefficients are not all 0.
template <class Ops, int kFilled>
static inline void Transform(const IdctBlock& first, const IdctBlock& second,
                             std::ptrdiff_t stride) {
    typename Ops::Words x[8];
    LoadLines<Ops, kFilled>(first, second, x);
    TransformColumns<Ops>(x);
    Transpose<Ops, kFilled>(x);
    TransformColumns<Ops>(x);
    StoreSamples<Ops>(x, first, second, stride);
}

template <class Ops>
static inline void FullBlocks(const IdctBlock& first, const IdctBlock& second,
                              std::ptrdiff_t stride) {
    const int end = Last(first, second);
    if (end == 1) {
        // Every result is what the DC is after dequantisation.
        Ops::Fill(first, second, stride);
    } else if (end <= kCorner) {
        Transform<Ops, 4>(first, second, stride);
    } else {
        Transform<Ops, 8>(first, second, stride);
    }
}

// The half-size transform down the columns of eight lines to four. Line 4 has no part in it.
template <class Ops>
static inline void HalfColumns(typename Ops::Words* x) {
    using Words = typename Ops::Words;
    constexpr int kCos1 = 15137;
    constexpr int kCos2 = 11585;
    constexpr int kCos3 = 6270;
    const Words z1 = Ops::Subtract(x[1], x[7]);
    const Words z2 = Ops::template Scale<kCos2>(Ops::Subtract(x[2], x[6]));
    const Words z3 = Ops::Subtract(x[3], x[5]);
    const Words even0 = Ops::Add(x[0], z2);
    const Words even1 = Ops::Subtract(x[0], z2);
    const Words odd0 = Ops::Add(Ops::template Scale<kCos1>(z1), Ops::template Scale<kCos3>(z3));
    const Words odd1 =
        Ops::Subtract(Ops::template Scale<kCos3>(z1), Ops::template Scale<kCos1>(z3));
    x[0] = Ops::Add(even0, odd0);
    x[1] = Ops::Add(even1, odd1);
    x[2] = Ops::Subtract(even1, odd1);
    x[3] = Ops::Subtract(even0, odd0);
}

template <class Ops, int kFilled>
static inline void HalfTransform(const IdctBlock& first, const IdctBlock& second,
                                 std::ptrdiff_t stride) {
    using Words = typename Ops::Words;
    Words x[8];
    LoadLines<Ops, kFilled>(first, second, x);
    HalfColumns<Ops>(x);
    // Four lines of eight columns to eight lines, of which only the first four words matter.
    const Words l01 = Ops::Low16(x[0], x[1]), l23 = Ops::Low16(x[2], x[3]);
    const Words h01 = Ops::High16(x[0], x[1]), h23 = Ops::High16(x[2], x[3]);
    const auto separate = [](Words two, Words* lines) {
        lines[0] = two;
        lines[1] = Ops::High64(two, two);
    };
    separate(Ops::Low32(l01, l23), x);
    separate(Ops::High32(l01, l23), x + 2);
    if constexpr (kFilled == 8) {
        separate(Ops::Low32(h01, h23), x + 4);
        separate(Ops::High32(h01, h23), x + 6);
    } else {
        x[4] = x[5] = x[6] = x[7] = Ops::Zero();
    }
    HalfColumns<Ops>(x);
    const Words r01 = Ops::Low16(x[0], x[1]), r23 = Ops::Low16(x[2], x[3]);
    Ops::Store4(Ops::Samples(Ops::Low32(r01, r23), Ops::High32(r01, r23)), first.samples,
                second.samples, stride);
}

template <class Ops>
static inline void HalfBlocks(const IdctBlock& first, const IdctBlock& second,
                              std::ptrdiff_t stride) {
    if (Last(first, second) <= kCorner) {
        HalfTransform<Ops, 4>(first, second, stride);
    } else {
        HalfTransform<Ops, 8>(first, second, stride);
    }
}

// The kernels.

template <class Ops>
static void FullIdct(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride) {
    if constexpr (Ops::kBlocks == 2) {
        FullBlocks<Ops>(first, second, stride);
    } else {
        FullBlocks<Ops>(first, first, stride);
        FullBlocks<Ops>(second, second, stride);
    }
}

template <class Ops>
static void HalfIdct(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride) {
    if constexpr (Ops::kBlocks == 2) {
        HalfBlocks<Ops>(first, second, stride);
    } else {
        HalfBlocks<Ops>(first, first, stride);
        HalfBlocks<Ops>(second, second, stride);
    }
}

}  // namespace marvolen::simd
