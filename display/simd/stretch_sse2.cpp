// The stretch with SSE2, in 16 bits without sign, which all sums fit in.

#include "display/stretch_kernels.h"

#include <emmintrin.h>

namespace marvolen {
namespace {

constexpr std::size_t kAtOnce = 16;  // samples

inline __m128i Load(const std::uint8_t* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// 16 samples of the blended row.
inline __m128i BlendSamples(const WeightedRow* rows, std::size_t count, std::size_t at) {
    const __m128i zero = _mm_setzero_si128();
    __m128i low = _mm_set1_epi16(128);
    __m128i high = low;
    for (std::size_t row = 0; row < count; ++row) {
        const __m128i samples = Load(rows[row].samples + at);
        const __m128i weight = _mm_set1_epi16(static_cast<short>(rows[row].weight));
        low = _mm_add_epi16(low, _mm_mullo_epi16(_mm_unpacklo_epi8(samples, zero), weight));
        high = _mm_add_epi16(high, _mm_mullo_epi16(_mm_unpackhi_epi8(samples, zero), weight));
    }
    return _mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8));
}

// Blended rows are bytes here.
void BlendRows(const WeightedRow* rows, std::size_t count, std::size_t samples,
               std::uint16_t* blended) {
    auto* to = reinterpret_cast<std::uint8_t*>(blended);
    if (samples < kAtOnce) {
        for (std::size_t i = 0; i < samples; ++i) {
            int sum = 128;
            for (std::size_t row = 0; row < count; ++row) {
                sum += rows[row].samples[i] * rows[row].weight;
            }
            to[i] = static_cast<std::uint8_t>(sum >> 8);
        }
        return;
    }
    for (std::size_t at = 0;; at += kAtOnce) {
        if (at + kAtOnce > samples) at = samples - kAtOnce;  // the last ones overlap
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), BlendSamples(rows, count, at));
        if (at + kAtOnce == samples) return;
    }
}

// Two neighbouring source pixels with their weights: words B G R B G R and two to be ignored.
inline __m128i WeighTwo(const std::uint8_t* pixels, int firstWeight, int secondWeight) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels));
    __m128i weights = _mm_set1_epi32(firstWeight | secondWeight << 16);
    weights = _mm_shufflelo_epi16(weights, _MM_SHUFFLE(1, 0, 0, 0));
    weights = _mm_shufflehi_epi16(weights, _MM_SHUFFLE(1, 1, 1, 1));
    return _mm_mullo_epi16(_mm_unpacklo_epi8(bytes, _mm_setzero_si128()), weights);
}

// The rounded sums of a target pixel: words B G R, then what is to be ignored.
template <std::size_t kTaps>
inline __m128i BlendPixel(const ColumnTaps& columns, const std::uint8_t* blended,
                          std::size_t pixel) {
    const std::uint8_t* from = blended + 3 * columns.first[pixel];
    const std::size_t taps = kTaps != 0 ? kTaps : columns.taps;
    const std::uint16_t* weights = columns.weights + pixel * taps;
    __m128i sums =
        taps % 2 != 0 ? WeighTwo(from + 3 * (taps - 1), weights[taps - 1], 0) : _mm_setzero_si128();
    for (std::size_t tap = 0; tap + 1 < taps; tap += 2) {
        sums = _mm_add_epi16(sums, WeighTwo(from + 3 * tap, weights[tap], weights[tap + 1]));
    }
    return _mm_add_epi16(sums, _mm_srli_si128(sums, 6));
}

template <std::size_t kTaps>
inline __m128i BlendTwo(const ColumnTaps& columns, const std::uint8_t* blended, std::size_t first,
                        std::size_t second) {
    const __m128i sums = _mm_unpacklo_epi64(BlendPixel<kTaps>(columns, blended, first),
                                            BlendPixel<kTaps>(columns, blended, second));
    return _mm_srli_epi16(_mm_add_epi16(sums, _mm_set1_epi16(128)), 8);
}

inline __m128i Opaque(__m128i pixels) {
    return _mm_or_si128(pixels, _mm_set1_epi32(static_cast<int>(0xFF000000)));
}

// kTaps repeats the axis' taps where it is known at compile time, else it is 0.
template <std::size_t kTaps>
void BlendPixels(const ColumnTaps& columns, const std::uint8_t* from, std::uint32_t* target) {
    const std::size_t count = columns.targetSize;
    std::size_t pixel = 0;
    for (; pixel + 4 <= count; pixel += 4) {
        const __m128i bytes =
            _mm_packus_epi16(BlendTwo<kTaps>(columns, from, pixel, pixel + 1),
                             BlendTwo<kTaps>(columns, from, pixel + 2, pixel + 3));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + pixel), Opaque(bytes));
    }
    for (; pixel < count; ++pixel) {
        const __m128i words = BlendTwo<kTaps>(columns, from, pixel, pixel);
        target[pixel] =
            static_cast<std::uint32_t>(_mm_cvtsi128_si32(Opaque(_mm_packus_epi16(words, words))));
    }
}

void BlendColumns(const ColumnTaps& columns, const std::uint16_t* blended, std::uint32_t* target) {
    const auto* from = reinterpret_cast<const std::uint8_t*>(blended);
    switch (columns.taps) {
        case 2:
            return BlendPixels<2>(columns, from, target);
        case 3:
            return BlendPixels<3>(columns, from, target);
        case 4:
            return BlendPixels<4>(columns, from, target);
        default:
            return BlendPixels<0>(columns, from, target);
    }
}

}  // namespace

const StretchKernels kSse2StretchKernels = {
    .name = "sse2", .blendRows = BlendRows, .blendColumns = BlendColumns};

}  // namespace marvolen
