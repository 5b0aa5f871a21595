#pragma once

#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstdint>

namespace marvolen {

// The sample lines that one output row, or a pair of rows, is built from.
struct SampleLines {
    const std::uint8_t* y;
    const std::uint8_t* yBelow;  // the line of the second row of a pair
    const std::uint8_t* cb;
    const std::uint8_t* cr;
};

// Builds rows of colour pixels (R, G, B, 0) from the first chromaSamples samples of Cb and Cr, each
// repeated over the pixels it covers. With Y sampled twice down the row below goes to second;
// otherwise second and yBelow are left alone.
template <int Horizontal, int Vertical>
void BuildColour(const SampleLines& lines, int chromaSamples, std::uint8_t* first,
                 std::uint8_t* second);

// By ColourMode; none for gray.
using ColourBuilder = void (*)(const SampleLines& lines, int chromaSamples, std::uint8_t* first,
                               std::uint8_t* second);
inline constexpr std::array<ColourBuilder, kColourModes> kColourBuilders = {
    nullptr, BuildColour<1, 1>, BuildColour<2, 1>, BuildColour<1, 2>, BuildColour<2, 2>};

// Rows of B, G, R in portable code, the reference for every other implementation; see JpegKernels.
void BuildGrayBgrPortable(const SampleLines& lines, int pixels, std::uint8_t* first,
                          std::uint8_t* second);
template <int Horizontal, int Vertical>
void BuildColourBgrPortable(const SampleLines& lines, int pixels, std::uint8_t* first,
                            std::uint8_t* second);

}  // namespace marvolen
