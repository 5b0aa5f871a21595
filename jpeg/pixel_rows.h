#pragma once

#include <cstdint>

namespace marvolen {

// The sample lines that one output row, or a pair of rows, is built from.
struct SampleLines {
    const std::uint8_t* y;
    const std::uint8_t* yBelow;  // the line of the second row of a pair
    const std::uint8_t* cb;
    const std::uint8_t* cr;
};

// The portable pixel kernels; see "jpeg/jpeg_kernels.h".

template <int Horizontal, int Vertical>
void BuildColourPortable(const SampleLines& lines, int chromaSamples, std::uint8_t* first,
                         std::uint8_t* second);

void PackGrayPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr);
void PackColourPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr);

}  // namespace marvolen
