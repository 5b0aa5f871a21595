#pragma once

// The operations of idct_simd.h and bgr_rows_simd.h with NEON on 64-bit little-endian ARM.

#include "jpeg/idct.h"

#include <arm_neon.h>
#include <cstring>

namespace marvolen::simd {
namespace {

struct NeonOps {
    using Words = int16x8_t;
    using Bytes = int16x8_t;

    static constexpr int kBlocks = 1;
    static constexpr int kPixels = 16;

    static Words Zero() { return vdupq_n_s16(0); }
    static Words Constant(short value) { return vdupq_n_s16(value); }
    static Words Add(Words a, Words b) { return vaddq_s16(a, b); }
    static Words Subtract(Words a, Words b) { return vsubq_s16(a, b); }

    static Words Low8(Words a, Words b) { return OfBytes(vzip1q_u8(ToBytes(a), ToBytes(b))); }
    static Words High8(Words a, Words b) { return OfBytes(vzip2q_u8(ToBytes(a), ToBytes(b))); }
    static Words Low16(Words a, Words b) { return vzip1q_s16(a, b); }
    static Words High16(Words a, Words b) { return vzip2q_s16(a, b); }
    static Words Low32(Words a, Words b) {
        return vreinterpretq_s16_s32(
            vzip1q_s32(vreinterpretq_s32_s16(a), vreinterpretq_s32_s16(b)));
    }
    static Words High32(Words a, Words b) {
        return vreinterpretq_s16_s32(
            vzip2q_s32(vreinterpretq_s32_s16(a), vreinterpretq_s32_s16(b)));
    }
    static Words Low64(Words a, Words b) { return vcombine_s16(vget_low_s16(a), vget_low_s16(b)); }
    static Words High64(Words a, Words b) {
        return vcombine_s16(vget_high_s16(a), vget_high_s16(b));
    }

    // Inverse DCT.

    // The instruction doubles the product; a x 4 is even, so that halving it first loses nothing.
    template <int kConstant>
    static Words Scale(Words a) {
        return vqdmulhq_n_s16(vshrq_n_s16(vshlq_n_s16(a, 2), 1), kConstant);
    }
    static void LoadTwo(const IdctBlock& block, const IdctBlock& /*same*/, int line, Words* lines) {
        for (int i = 0; i < 2; ++i, ++line) {
            lines[i] = vmulq_s16(vld1q_s16(block.coefficients + 8 * line),
                                 vld1q_s16(block.table + 8 * line));
        }
    }
    static Bytes Samples(Words a, Words b) {
        const int8x16_t clamped = vcombine_s8(vqshrn_n_s16(a, 5), vqshrn_n_s16(b, 5));
        return OfBytes(veorq_u8(vreinterpretq_u8_s8(clamped), vdupq_n_u8(128)));
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
        vst1_u8(to, vget_low_u8(ToBytes(lines)));
        vst1_u8(to + stride, vget_high_u8(ToBytes(lines)));
    }
    // Four lines of four samples.
    static void Store4(Bytes lines, std::uint8_t* to, std::uint8_t* /*same*/,
                       std::ptrdiff_t stride) {
        std::uint8_t samples[16];
        vst1q_u8(samples, ToBytes(lines));
        for (int line = 0; line < 4; ++line) std::memcpy(to + line * stride, samples + 4 * line, 4);
    }

    // Rows.

    static Bytes Load(const std::uint8_t* from) { return OfBytes(vld1q_u8(from)); }
    static Words LoadWide(const std::uint8_t* from) {
        return vreinterpretq_s16_u16(vmovl_u8(vld1_u8(from)));
    }
    static Words Even(Bytes a) { return vandq_s16(a, Constant(0xFF)); }
    static Words Odd(Bytes a) {
        return vreinterpretq_s16_u16(vshrq_n_u16(vreinterpretq_u16_s16(a), 8));
    }
    template <int kConstant>
    static Words MultiplyRounded(Words a) {
        return vqrdmulhq_n_s16(a, kConstant);
    }
    static Words GreenOf(Words b, Words r) {
        const auto sum = [](int16x4_t fourB, int16x4_t fourR) {
            return vrshrn_n_s32(vmlal_n_s16(vmull_n_s16(fourB, -22554), fourR, 18734), 16);
        };
        return vcombine_s16(sum(vget_low_s16(b), vget_low_s16(r)),
                            sum(vget_high_s16(b), vget_high_s16(r)));
    }
    static Bytes Pack(Words even, Words odd) {
        const uint8x8x2_t pixels = vzip_u8(vqmovun_s16(even), vqmovun_s16(odd));
        return OfBytes(vcombine_u8(pixels.val[0], pixels.val[1]));
    }
    static void StoreBgr(std::uint8_t* to, Bytes blue, Bytes green, Bytes red) {
        const uint8x16x3_t pixels = {{ToBytes(blue), ToBytes(green), ToBytes(red)}};
        vst3q_u8(to, pixels);
    }

private:
    static Words OfBytes(uint8x16_t bytes) { return vreinterpretq_s16_u8(bytes); }
    static uint8x16_t ToBytes(Words words) { return vreinterpretq_u8_s16(words); }
};

}  // namespace
}  // namespace marvolen::simd
