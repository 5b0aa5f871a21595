// The stretch with AVX2.
//
// Samples lose 128 before they are weighed, so that they are signed bytes, weights unsigned ones
// and a multiplication of bytes adds up two of them. No such sum leaves 16 bits, as two weights sum
// to 256 at most. Weights sum to 256 over all: sums are 32768 too small, which is a high bit, and
// blended samples 128, as the horizontal pass wants them. A weight of 256 doesn't fit in a byte; a
// row that has it is alone, and ColumnWeights has cut it in two.

#include "display/stretch_kernels.h"

#include <immintrin.h>

namespace marvolen {
namespace {

constexpr std::size_t kAtOnce = 32;  // samples

inline __m256i Load(const std::uint8_t* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

inline void Store(std::uint8_t* bytes, __m256i value) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), value);
}

inline __m256i LoadSigned(const std::uint8_t* bytes) {
    return _mm256_xor_si256(Load(bytes), _mm256_set1_epi8(-128));
}

// The sixteen bytes of two steps side by side.
inline __m256i LoadTwoSteps(const std::uint8_t* blended, const std::int32_t* offsets) {
    const auto* first = reinterpret_cast<const __m128i*>(blended + offsets[0]);
    const auto* second = reinterpret_cast<const __m128i*>(blended + offsets[1]);
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(first)),
                                   _mm_loadu_si128(second), 1);
}

// 32 samples of the blended row.
inline __m256i BlendSamples(const WeightedRow* rows, std::size_t count, std::size_t at) {
    __m256i low = _mm256_set1_epi16(128);
    __m256i high = low;
    for (std::size_t row = 0; row < count; row += 2) {
        // The last of an odd number is paired with itself and no weight.
        const WeightedRow& a = rows[row];
        const bool paired = row + 1 < count;
        const WeightedRow& b = rows[paired ? row + 1 : row];
        const int weights = a.weight | (paired ? b.weight << 8 : 0);
        const __m256i both = _mm256_set1_epi16(static_cast<short>(weights));
        const __m256i first = LoadSigned(a.samples + at);
        const __m256i second = LoadSigned(b.samples + at);
        low =
            _mm256_add_epi16(low, _mm256_maddubs_epi16(both, _mm256_unpacklo_epi8(first, second)));
        high =
            _mm256_add_epi16(high, _mm256_maddubs_epi16(both, _mm256_unpackhi_epi8(first, second)));
    }
    return _mm256_packs_epi16(_mm256_srai_epi16(low, 8), _mm256_srai_epi16(high, 8));
}

// Blended rows are signed bytes here.
void BlendRows(const WeightedRow* rows, std::size_t count, std::size_t samples,
               std::uint16_t* blended) {
    auto* to = reinterpret_cast<std::uint8_t*>(blended);
    const bool isCopy = count == 1;
    if (samples < kAtOnce) {
        for (std::size_t i = 0; i < samples; ++i) {
            int sum = 128;
            for (std::size_t row = 0; row < count; ++row) {
                sum += rows[row].samples[i] * rows[row].weight;
            }
            to[i] = static_cast<std::uint8_t>((sum >> 8) - 128);
        }
        return;
    }
    for (std::size_t at = 0;; at += kAtOnce) {
        if (at + kAtOnce > samples) at = samples - kAtOnce;  // the last ones overlap
        Store(to + at, isCopy ? LoadSigned(rows[0].samples + at) : BlendSamples(rows, count, at));
        if (at + kAtOnce == samples) return;
    }
}

// Sums of target pixels 0 and 2 in one lane, of 1 and 3 in the other.
template <bool kOneStep>
inline __m256i BlendFour(const ColumnTaps& columns, const std::uint8_t* blended,
                         std::size_t pixel) {
    __m256i left = _mm256_setzero_si256();
    __m256i right = left;
    for (std::size_t step = 0; step < (kOneStep ? 1 : columns.steps); ++step) {
        const std::size_t at = step * columns.paddedTarget + pixel;
        const std::int32_t* offsets = columns.offsets + at;
        const std::uint8_t* places = columns.places + at * kStepBytes;
        const std::uint8_t* weights = columns.weightBytes + at * kStepBytes;
        const __m256i first = _mm256_shuffle_epi8(LoadTwoSteps(blended, offsets), Load(places));
        const __m256i second =
            _mm256_shuffle_epi8(LoadTwoSteps(blended, offsets + 2), Load(places + 32));
        left = _mm256_add_epi16(left, _mm256_maddubs_epi16(Load(weights), first));
        right = _mm256_add_epi16(right, _mm256_maddubs_epi16(Load(weights + 32), second));
    }
    return _mm256_add_epi16(_mm256_unpacklo_epi64(left, right), _mm256_unpackhi_epi64(left, right));
}

// Eight target pixels.
template <bool kOneStep>
inline __m256i BlendEight(const ColumnTaps& columns, const std::uint8_t* blended,
                          std::size_t pixel) {
    // Rounding and what the sums are too small by; the fourth byte, whose sum is 0, becomes 255.
    constexpr short kColour = -32768 + 128;
    constexpr short kOpaque = -256;
    const __m256i offset =
        _mm256_setr_epi16(kColour, kColour, kColour, kOpaque, kColour, kColour, kColour, kOpaque,
                          kColour, kColour, kColour, kOpaque, kColour, kColour, kColour, kOpaque);
    const __m256i low = _mm256_add_epi16(BlendFour<kOneStep>(columns, blended, pixel), offset);
    const __m256i high = _mm256_add_epi16(BlendFour<kOneStep>(columns, blended, pixel + 4), offset);
    const __m256i bytes =
        _mm256_packus_epi16(_mm256_srli_epi16(low, 8), _mm256_srli_epi16(high, 8));
    // Pixels 0 2 4 6 and 1 3 5 7.
    return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

template <bool kOneStep>
void BlendPixels(const ColumnTaps& columns, const std::uint8_t* blended, std::uint32_t* target) {
    const std::size_t count = columns.targetSize;
    std::size_t pixel = 0;
    for (; pixel + kColumnGroup <= count; pixel += kColumnGroup) {
        Store(reinterpret_cast<std::uint8_t*>(target + pixel),
              BlendEight<kOneStep>(columns, blended, pixel));
    }
    if (pixel == count) return;
    alignas(32) std::uint32_t last[kColumnGroup];
    Store(reinterpret_cast<std::uint8_t*>(last), BlendEight<kOneStep>(columns, blended, pixel));
    for (const std::uint32_t* from = last; pixel < count; ++pixel) target[pixel] = *from++;
}

void BlendColumns(const ColumnTaps& columns, const std::uint16_t* blended, std::uint32_t* target) {
    const auto* from = reinterpret_cast<const std::uint8_t*>(blended);
    if (columns.steps == 1) {
        BlendPixels<true>(columns, from, target);
    } else {
        BlendPixels<false>(columns, from, target);
    }
}

}  // namespace

const StretchKernels kAvx2StretchKernels = {
    .name = "avx2", .blendRows = BlendRows, .blendColumns = BlendColumns};

}  // namespace marvolen
