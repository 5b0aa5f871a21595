#pragma once

#include "jpeg/huffman_table.h"
#include "jpeg/jpeg_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

// Natural (row-major) position of each zigzag position (ITU-T T.81, figure A.6).
extern const std::array<std::uint8_t, kBlockSize> kNaturalOrder;

// Scale factors of the Arai-Agui-Nakajima DCT in natural order: row u, column v holds
// round(16384 x s(u) x s(v)), where s(0) = 1 and s(k) = sqrt(2) x cos(k x pi / 16).
extern const std::array<std::int16_t, kBlockSize> kAanScale;

// One Huffman slot: the table as received and the decoding table made from it. Null: not defined.
struct HuffmanSlot {
    std::uint8_t* counts = nullptr;   // 17 bytes, entry 1..16: codes of that length
    std::uint8_t* symbols = nullptr;  // 256 bytes, symbols in code order
    HuffmanTable* derived = nullptr;  // built by SetUpScanHuffman
    bool changed = false;             // received since derived was built
};

inline constexpr int kHuffmanSlots = 8;
inline constexpr int kFirstAcSlot = 4;
inline constexpr int kQuantTables = 4;

// The tables of one picture; their memory belongs to the decoder's AllocationTable.
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

class AllocationTable;

// Checks that the Huffman tables which scan needs are there, and builds the decoding table of
// every slot that was received since the last scan. Throws JpegFailure -223 for a missing table.
void SetUpScanHuffman(const JpegScan& scan, JpegTables& tables, AllocationTable& allocations);

// Throws JpegFailure -222 unless every component of the scan has its quantisation table.
void RequireQuantTables(const JpegFrame& frame, const JpegScan& scan, const JpegTables& tables);

}  // namespace marvolen
