#pragma once

#include "jpeg/jpeg_path.h"
#include "tests/jpeg/test_picture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marvolen::test {

using Bytes = std::vector<std::uint8_t>;

// One scan of a progressive picture.
struct ProgressiveScan {
    std::vector<int> components;
    int spectralStart, spectralEnd, approximationHigh, approximationLow;
};

struct EncodeOptions {
    bool gray = false;
    int horizontal = 2;  // sampling factors of Y
    int vertical = 2;
    // Percent of the standard quantisation tables. Above about 200 entries need 16 bits.
    int quantPercent = 50;
    bool optimise = false;     // Huffman tables of its own
    int restartInterval = 0;   // MCUs
    bool progressive = false;  // with the usual scans, unless scans says otherwise
    std::vector<ProgressiveScan> scans = {};
};

// Encodes a picture with libjpeg.
Bytes EncodeJpeg(const Picture& picture, const EncodeOptions& options);

// The quantised coefficients of one component, as libjpeg reads them: blocks row by row, padded to
// whole MCUs, each 64 values in natural order.
struct ReferenceComponent {
    int horizontal = 0;
    int vertical = 0;
    int blocksPerRow = 0;
    int blockRows = 0;
    std::array<int, 64> quantisation{};  // natural order
    std::vector<std::int16_t> coefficients;

    const std::int16_t* Block(int row, int column) const {
        return coefficients.data() +
               (static_cast<std::size_t>(row) * static_cast<std::size_t>(blocksPerRow) +
                static_cast<std::size_t>(column)) *
                   64;
    }
};

// Entropy-decodes a sound JPEG with libjpeg.
std::vector<ReferenceComponent> ReadCoefficients(const Bytes& jpeg);

// Decodes a sound JPEG with libjpeg and its DCT of that kind, chroma samples repeated, to RGB.
Picture DecodeWithLibjpeg(const Bytes& jpeg, JpegPath path);

}  // namespace marvolen::test
