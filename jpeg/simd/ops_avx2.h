#pragma once

// The operations of idct_simd.h and bgr_rows_simd.h with AVX2. Its registers are two lanes of 128
// bits that most instructions keep apart: two blocks, or the halves of 32 pixels.

#include "jpeg/idct.h"

#include <immintrin.h>

namespace marvolen::simd {
namespace {

// Where the bytes of one colour go among the pixels of a lane. Of a lane's 48 bytes place i of the
// v-th sixteen has colour (v + i) % 3, so one shuffle a colour serves all three. The pixels of a
// lane come as the eight at even places, then those at odd ones.
struct BgrShuffles {
    alignas(32) std::uint8_t places[3][32];
    alignas(32) std::uint8_t masks[3][32];  // of the places i with i % 3 == 0, 1, 2

    constexpr BgrShuffles() : places{}, masks{} {
        for (int i = 0; i < 32; ++i) {
            for (int colour = 0; colour < 3; ++colour) {
                const int place = i % 16;
                const int pixel = (16 * ((colour - place % 3 + 3) % 3) + place) / 3;
                places[colour][i] = static_cast<std::uint8_t>(pixel / 2 + pixel % 2 * 8);
                masks[colour][i] = place % 3 == colour ? 0xFF : 0;
            }
        }
    }
};
constexpr BgrShuffles kBgrShuffles;

struct Avx2Ops {
    using Words = __m256i;
    using Bytes = __m256i;

    static constexpr int kBlocks = 2;
    static constexpr int kPixels = 32;

    static Words Zero() { return _mm256_setzero_si256(); }
    static Words Constant(short value) { return _mm256_set1_epi16(value); }
    static Words Add(Words a, Words b) { return _mm256_add_epi16(a, b); }
    static Words Subtract(Words a, Words b) { return _mm256_sub_epi16(a, b); }

    static Words Low8(Words a, Words b) { return _mm256_unpacklo_epi8(a, b); }
    static Words High8(Words a, Words b) { return _mm256_unpackhi_epi8(a, b); }
    static Words Low16(Words a, Words b) { return _mm256_unpacklo_epi16(a, b); }
    static Words High16(Words a, Words b) { return _mm256_unpackhi_epi16(a, b); }
    static Words Low32(Words a, Words b) { return _mm256_unpacklo_epi32(a, b); }
    static Words High32(Words a, Words b) { return _mm256_unpackhi_epi32(a, b); }
    static Words Low64(Words a, Words b) { return _mm256_unpacklo_epi64(a, b); }
    static Words High64(Words a, Words b) { return _mm256_unpackhi_epi64(a, b); }

    // Inverse DCT.

    template <int kConstant>
    static Words Scale(Words a) {
        return _mm256_mulhi_epi16(_mm256_slli_epi16(a, 2), Constant(kConstant));
    }
    static void LoadTwo(const IdctBlock& first, const IdctBlock& second, int line, Words* lines) {
        const auto load = [line](const IdctBlock& block) {
            return _mm256_mullo_epi16(Load(block.coefficients + 8 * line),
                                      Load(block.table + 8 * line));
        };
        const __m256i a = load(first);
        const __m256i b = load(second);
        lines[0] = _mm256_permute2x128_si256(a, b, 0x20);
        lines[1] = _mm256_permute2x128_si256(a, b, 0x31);
    }
    static Bytes Samples(Words a, Words b) {
        const __m256i clamped =
            _mm256_packs_epi16(_mm256_srai_epi16(a, 5), _mm256_srai_epi16(b, 5));
        return _mm256_xor_si256(clamped, _mm256_set1_epi8(-128));
    }
    static void Fill(const IdctBlock& first, const IdctBlock& second, std::ptrdiff_t stride) {
        const auto dc = [](const IdctBlock& block) {
            return _mm256_set1_epi16(static_cast<short>(block.coefficients[0] * block.table[0]));
        };
        const Words both = _mm256_blend_epi32(dc(first), dc(second), 0xF0);
        const Bytes samples = Samples(both, both);
        for (std::ptrdiff_t line = 0; line < 8; line += 2) {
            Store8(samples, first.samples + line * stride, second.samples + line * stride, stride);
        }
    }
    // Two lines of eight samples each; blocks side by side take half the stores.
    static void Store8(Bytes lines, std::uint8_t* first, std::uint8_t* second,
                       std::ptrdiff_t stride) {
        if (second == first + 8) {
            const __m256i wide = _mm256_permute4x64_epi64(lines, _MM_SHUFFLE(3, 1, 2, 0));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(first), _mm256_castsi256_si128(wide));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(first + stride),
                             _mm256_extracti128_si256(wide, 1));
        } else {
            StoreHalves(_mm256_castsi256_si128(lines), first, stride);
            StoreHalves(_mm256_extracti128_si256(lines, 1), second, stride);
        }
    }
    // Four lines of four samples each.
    static void Store4(Bytes lines, std::uint8_t* first, std::uint8_t* second,
                       std::ptrdiff_t stride) {
        if (second == first + 4) {
            const __m256i places = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
            const __m256i wide = _mm256_permutevar8x32_epi32(lines, places);
            StoreHalves(_mm256_castsi256_si128(wide), first, stride);
            StoreHalves(_mm256_extracti128_si256(wide, 1), first + 2 * stride, stride);
        } else {
            const auto store = [stride](__m128i four, std::uint8_t* to) {
                _mm_storeu_si32(to, four);
                _mm_storeu_si32(to + stride, _mm_srli_si128(four, 4));
                _mm_storeu_si32(to + 2 * stride, _mm_srli_si128(four, 8));
                _mm_storeu_si32(to + 3 * stride, _mm_srli_si128(four, 12));
            };
            store(_mm256_castsi256_si128(lines), first);
            store(_mm256_extracti128_si256(lines, 1), second);
        }
    }

    // Rows.

    static Bytes Load(const void* from) {
        return _mm256_loadu_si256(static_cast<const __m256i*>(from));
    }
    static Words LoadWide(const std::uint8_t* from) {
        return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
    }
    static Words Even(Bytes a) { return _mm256_and_si256(a, Constant(0xFF)); }
    static Words Odd(Bytes a) { return _mm256_srli_epi16(a, 8); }
    template <int kConstant>
    static Words MultiplyRounded(Words a) {
        return _mm256_mulhrs_epi16(a, Constant(kConstant));
    }
    static Words GreenOf(Words b, Words r) {
        const auto sum = [](Words pairs) {
            const Words factors = _mm256_set1_epi32(18734 * 65536 + (65536 - 22554));
            return _mm256_srai_epi32(
                _mm256_add_epi32(_mm256_madd_epi16(pairs, factors), _mm256_set1_epi32(32768)), 16);
        };
        return _mm256_packs_epi32(sum(Low16(b, r)), sum(High16(b, r)));
    }
    static Bytes Pack(Words even, Words odd) { return _mm256_packus_epi16(even, odd); }
    static void StoreBgr(std::uint8_t* to, Bytes blue, Bytes green, Bytes red) {
        const Bytes b = _mm256_shuffle_epi8(blue, Load(kBgrShuffles.places[0]));
        const Bytes g = _mm256_shuffle_epi8(green, Load(kBgrShuffles.places[1]));
        const Bytes r = _mm256_shuffle_epi8(red, Load(kBgrShuffles.places[2]));
        const auto choose = [](Bytes at0, Bytes at1, Bytes at2) {
            const Bytes two = _mm256_blendv_epi8(at0, at1, Load(kBgrShuffles.masks[1]));
            return _mm256_blendv_epi8(two, at2, Load(kBgrShuffles.masks[2]));
        };
        const Bytes head = choose(b, g, r), middle = choose(g, r, b), tail = choose(r, b, g);
        auto* const out = reinterpret_cast<__m256i*>(to);
        _mm256_storeu_si256(out, _mm256_permute2x128_si256(head, middle, 0x20));
        _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(tail, head, 0x30));
        _mm256_storeu_si256(out + 2, _mm256_permute2x128_si256(middle, tail, 0x31));
    }

private:
    static void StoreHalves(__m128i both, std::uint8_t* to, std::ptrdiff_t stride) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), both);
        _mm_storeh_pi(reinterpret_cast<__m64*>(to + stride), _mm_castsi128_ps(both));
    }
};

}  // namespace
}  // namespace marvolen::simd
