#pragma once

#include <cstdint>

namespace marvolen {

// Rows of pixels from the samples of an MCU row, and their packing, in portable code; each is the
// reference for the kernel of "jpeg/jpeg_kernels.h" with its name.

void BuildGrayPortable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second);
void BuildY1x1Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second);
void BuildY2x1Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second);
void BuildY1x2Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second);
void BuildY2x2Portable(const std::uint8_t* samples, int mcus, int p, std::uint8_t* first,
                       std::uint8_t* second);

void PackGrayPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr);
void PackColourPortable(const std::uint8_t* row, int pixels, std::uint8_t* bgr);

}  // namespace marvolen
