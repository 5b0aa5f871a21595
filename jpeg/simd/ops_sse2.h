#pragma once

// The operations of idct_simd.h and bgr_rows_simd.h with SSE2.

#include "jpeg/idct.h"

#include <emmintrin.h>

namespace marvolen::simd {
namespace {

struct Sse2Ops {
    using Words = __m128i;
    using Bytes = __m128i;

    static constexpr int kBlocks = 1;
    static constexpr int kPixels = 16;

    static Words Zero() { return _mm_setzero_si128(); }
    static Words Constant(short value) { return _mm_set1_epi16(value); }
    static Words Add(Words a, Words b) { return _mm_add_epi16(a, b); }
    static Words Subtract(Words a, Words b) { return _mm_sub_epi16(a, b); }

    static Words Low8(Words a, Words b) { return _mm_unpacklo_epi8(a, b); }
    static Words High8(Words a, Words b) { return _mm_unpackhi_epi8(a, b); }
    static Words Low16(Words a, Words b) { return _mm_unpacklo_epi16(a, b); }
    static Words High16(Words a, Words b) { return _mm_unpackhi_epi16(a, b); }
    static Words Low32(Words a, Words b) { return _mm_unpacklo_epi32(a, b); }
    static Words High32(Words a, Words b) { return _mm_unpackhi_epi32(a, b); }
    static Words Low64(Words a, Words b) { return _mm_unpacklo_epi64(a, b); }
    static Words High64(Words a, Words b) { return _mm_unpackhi_epi64(a, b); }

    // Inverse DCT.

    template <int kConstant>
    static Words Scale(Words a) {
        return _mm_mulhi_epi16(_mm_slli_epi16(a, 2), Constant(kConstant));
    }
    static void LoadTwo(const IdctBlock& block, const IdctBlock& /*same*/, int line, Words* lines) {
        for (int i = 0; i < 2; ++i, ++line) {
            lines[i] =
                _mm_mullo_epi16(Load(block.coefficients + 8 * line), Load(block.table + 8 * line));
        }
    }
    static Bytes Samples(Words a, Words b) {
        const __m128i clamped = _mm_packs_epi16(_mm_srai_epi16(a, 5), _mm_srai_epi16(b, 5));
        return _mm_xor_si128(clamped, _mm_set1_epi8(-128));
    }
    static void Fill(const IdctBlock& block, const IdctBlock& same, std::ptrdiff_t stride) {
        const Words dc = Constant(static_cast<short>(block.coefficients[0] * block.table[0]));
        const Bytes samples = Samples(dc, dc);
        for (std::ptrdiff_t line = 0; line < 8; line += 2) {
            Store8(samples, block.samples + line * stride, same.samples, stride);
        }
    }
    // Two lines of eight samples.
    static void Store8(Bytes lines, std::uint8_t* to, std::uint8_t* /*same*/,
                       std::ptrdiff_t stride) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), lines);
        _mm_storeh_pi(reinterpret_cast<__m64*>(to + stride), _mm_castsi128_ps(lines));
    }
    // Four lines of four samples.
    static void Store4(Bytes lines, std::uint8_t* to, std::uint8_t* /*same*/,
                       std::ptrdiff_t stride) {
        _mm_storeu_si32(to, lines);
        _mm_storeu_si32(to + stride, _mm_srli_si128(lines, 4));
        _mm_storeu_si32(to + 2 * stride, _mm_srli_si128(lines, 8));
        _mm_storeu_si32(to + 3 * stride, _mm_srli_si128(lines, 12));
    }

    // Rows.

    static Bytes Load(const void* from) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    }
    static Words LoadWide(const std::uint8_t* from) {
        return Low8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)), Zero());
    }
    static Words Even(Bytes a) { return _mm_and_si128(a, Constant(0xFF)); }
    static Words Odd(Bytes a) { return _mm_srli_epi16(a, 8); }
    // Half of the doubled values' high product, rounded up.
    template <int kConstant>
    static Words MultiplyRounded(Words a) {
        const Words high = _mm_mulhi_epi16(Add(a, a), Constant(2 * kConstant));
        return _mm_srai_epi16(Add(high, Constant(1)), 1);
    }
    static Words GreenOf(Words b, Words r) {
        const auto sum = [](Words pairs) {
            const Words factors = _mm_set1_epi32(18734 * 65536 + (65536 - 22554));
            return _mm_srai_epi32(
                _mm_add_epi32(_mm_madd_epi16(pairs, factors), _mm_set1_epi32(32768)), 16);
        };
        return _mm_packs_epi32(sum(Low16(b, r)), sum(High16(b, r)));
    }
    static Bytes Pack(Words even, Words odd) { return _mm_packus_epi16(even, odd); }
    // Of each operand the eight pixels at even places come first. Two pixels make three words of
    // two bytes, four pixels three words of four, and these are dealt out by turns.
    static void StoreBgr(std::uint8_t* to, Bytes blue, Bytes green, Bytes red) {
        const __m128i w0 = Low8(blue, green);
        const __m128i w1 = Low8(red, _mm_srli_si128(blue, 8));
        const __m128i w2 = High8(green, red);
        const __m128i low = _mm_set1_epi32(0xFFFF);
        const __m128i d0 = _mm_or_si128(_mm_and_si128(low, w0), _mm_slli_epi32(w1, 16));
        const __m128i d1 = _mm_or_si128(_mm_and_si128(low, w2), _mm_andnot_si128(low, w0));
        const __m128i d2 = _mm_or_si128(_mm_srli_epi32(w1, 16), _mm_andnot_si128(low, w2));
        auto* const out = reinterpret_cast<__m128i*>(to);
        _mm_storeu_si128(out, Join<0, 1, 0, 2>(Low32(d0, d1), Join<0, 0, 1, 1>(d2, d0)));
        _mm_storeu_si128(out + 1, Join<2, 3, 0, 1>(Low32(d1, d2), High32(d0, d1)));
        _mm_storeu_si128(out + 2, Join<0, 2, 2, 3>(Join<2, 2, 3, 3>(d2, d0), High32(d1, d2)));
    }

private:
    // Places i and j of a, then k and l of b.
    template <int i, int j, int k, int l>
    static __m128i Join(__m128i a, __m128i b) {
        return _mm_castps_si128(
            _mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(l, k, j, i)));
    }
};

}  // namespace
}  // namespace marvolen::simd
