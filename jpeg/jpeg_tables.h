#pragma once

#include "jpeg/huffman_table.h"
#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace marvolen {

// Natural (row-major) position of each zigzag position (ITU-T T.81, figure A.6).
// clang-format off
inline constexpr std::array<std::uint8_t, kBlockSize> kNaturalOrder = {
     0,  1,  8, 16,  9,  2,  3, 10, 17, 24, 32, 25, 18, 11,  4,  5,
    12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13,  6,  7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,
};
// clang-format on

// Scale factors of the Arai-Agui-Nakajima DCT in natural order: row u, column v holds
// round(16384 x s(u) x s(v)), where s(0) = 1 and s(k) = sqrt(2) x cos(k x pi / 16).
extern const std::array<std::int16_t, kBlockSize> kAanScale;

// One Huffman slot: the table as received and the decoding table made from it. Null: not defined.
struct HuffmanSlot {
    std::uint8_t* counts = nullptr;               // 17 bytes, entry 1..16: codes of that length
    std::uint8_t* symbols = nullptr;              // 256 bytes, symbols in code order
    std::shared_ptr<const HuffmanTable> derived;  // set by SetUpScanHuffman
    bool changed = false;                         // received since derived was built
};

inline constexpr int kHuffmanSlots = 8;
inline constexpr int kFirstAcSlot = 4;
inline constexpr int kQuantTables = 4;

// The tables of one picture. What was received belongs to the decoder's AllocationTable, decoding
// tables are shared with other pictures.
struct JpegTables {
    std::array<HuffmanSlot, kHuffmanSlots> huffman;  // slots 0..3 DC, 4..7 AC
    // 64 values each. On the fast path in natural order with the AAN scale factor and 2 fractional
    // bits folded in; otherwise as received, in zigzag order. Null: not defined.
    std::array<std::int16_t*, kQuantTables> quantisation{};

    // Is there a table for what a frame component names?
    bool HasQuantTable(int number) const {
        return number < kQuantTables && quantisation[static_cast<std::size_t>(number)] != nullptr;
    }
    const std::int16_t* QuantTable(int number) const {
        return quantisation[static_cast<std::size_t>(number)];
    }
};

// Checks that the Huffman tables which scan needs are there, and gets the decoding table of every
// slot that was received since the last scan, for AC slots one for acUse. Throws JpegFailure: -223
// for a missing table, -233 without memory.
void SetUpScanHuffman(const JpegScan& scan, HuffmanTable::Use acUse, JpegTables& tables);

// Throws JpegFailure -222 unless every component of the scan has its quantisation table.
void RequireQuantTables(const JpegFrame& frame, const JpegScan& scan, const JpegTables& tables);

}  // namespace marvolen
