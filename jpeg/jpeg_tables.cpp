#include "jpeg/jpeg_tables.h"

#include "jpeg/huffman_cache.h"
#include "jpeg/jpeg_error.h"

namespace marvolen {

// clang-format off
const std::array<std::int16_t, kBlockSize> kAanScale = {
    16384, 22725, 21407, 19266, 16384, 12873,  8867,  4520,
    22725, 31521, 29692, 26722, 22725, 17855, 12299,  6270,
    21407, 29692, 27969, 25172, 21407, 16819, 11585,  5906,
    19266, 26722, 25172, 22654, 19266, 15137, 10426,  5315,
    16384, 22725, 21407, 19266, 16384, 12873,  8867,  4520,
    12873, 17855, 16819, 15137, 12873, 10114,  6967,  3552,
     8867, 12299, 11585, 10426,  8867,  6967,  4799,  2446,
     4520,  6270,  5906,  5315,  4520,  3552,  2446,  1247,
};
// clang-format on

void SetUpScanHuffman(const JpegScan& scan, HuffmanTable::Use acUse, JpegTables& tables) {
    const auto require = [&](int slot, int firstSlot) {
        const bool named = slot < firstSlot + kFirstAcSlot;
        if (!named || tables.huffman[static_cast<std::size_t>(slot)].counts == nullptr) {
            Fail(kJpegErrorHuffmanMissing);
        }
    };
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.componentCount); ++i) {
        const auto component = static_cast<std::size_t>(scan.components[i]);
        if (scan.spectralStart == 0) require(scan.dcSlot[component], 0);
        if (scan.spectralEnd > 0) require(scan.acSlot[component], kFirstAcSlot);
    }
    for (int slot = 0; slot < kHuffmanSlots; ++slot) {
        HuffmanSlot& table = tables.huffman[static_cast<std::size_t>(slot)];
        if (!table.changed) continue;
        const auto use = slot < kFirstAcSlot ? HuffmanTable::Use::Dc : acUse;
        table.derived = CachedHuffmanTable(table.counts, table.symbols, use);
        table.changed = false;
    }
}

void RequireQuantTables(const JpegFrame& frame, const JpegScan& scan, const JpegTables& tables) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.componentCount); ++i) {
        const auto component = static_cast<std::size_t>(scan.components[i]);
        if (!tables.HasQuantTable(frame.components[component].quantTable)) {
            Fail(kJpegErrorQuantMissing);
        }
    }
}

}  // namespace marvolen
