// The inner loop takes everything as a coefficient that advances the position: a real one, sixteen
// zeros (advance 16, value 0), the end of the block (an advance beyond any position). What lands
// beyond the block is stored in one place behind it. So a single comparison a look tells when
// something else than coefficients inside the block has come, and only then what it was.

#include "jpeg/segment_decoder.h"

#include "jpeg/allocation_table.h"
#include "jpeg/jpeg_error.h"

#include <algorithm>

namespace marvolen {
namespace {

using Pair = HuffmanTable::Pair;

// Where the coefficient stands that the position has advanced behind.
constexpr std::array<std::uint8_t, 256> MakeOrderBehind() {
    std::array<std::uint8_t, 256> order{};
    order.fill(kBlockSize);
    for (std::size_t k = 0; k < kBlockSize; ++k) order[k + 1] = kNaturalOrder[k];
    return order;
}
constexpr std::array<std::uint8_t, 256> kOrderBehind = MakeOrderBehind();

constexpr int kLooksARefill = 4;
static_assert(HuffmanTable::kDirectBits + kLooksARefill * HuffmanTable::kPairBits <=
              BitCursor::kRefilled);

// What a function that stays out of line does to the cursor it is given. Passed by value, so that
// the caller's own stays in registers.
struct Step {
    BitCursor in;
    int value;
};

[[gnu::noinline]] Step DecodeLongDc(const HuffmanTable& table, BitCursor in) {
    const int size = table.DecodeSymbol(in);
    if (size > 15) Fail(kJpegErrorCorrupt);
    const int difference = size == 0 ? 0 : ExtendCoefficient(in.ReadBits(size), size);
    in.Refill();
    return {in, difference};
}

inline int DecodeDcDifference(const HuffmanTable& table, BitCursor& in) {
    const HuffmanTable::Direct direct = table.LookUp(in.Peek(HuffmanTable::kDirectBits));
    if (direct.IsCoefficient()) [[likely]] {
        in.Consume(direct.Bits());
        return direct.Value();
    }
    const Step step = DecodeLongDc(table, in);
    in = step.in;
    return step.value;
}

// A symbol whose bits or value bits a look doesn't see whole. Returns the next position: the block
// ends at position + Pair::kEnd. Forced inline, for a call would force the cursor out of registers.
[[gnu::always_inline]] inline int DecodeLong(const HuffmanTable& table, Pair entry, BitCursor& in,
                                             std::int16_t* block, int position) {
    in.Refill();
    HuffmanTable::Decoded decoded = {entry.Value(), entry.FirstBits()};
    if (decoded.length == Pair::kUnknown) [[unlikely]] {
        decoded = table.DecodeWindow(in.Peek16());
    }
    in.Consume(decoded.length);
    const int size = decoded.symbol & 15;
    if (size == 0 && decoded.symbol != kZeroRun) {
        in.Refill();
        return position + Pair::kEnd;
    }
    position += decoded.symbol >> 4;
    if (position >= kBlockSize) Fail(kJpegErrorCorrupt);
    if (size != 0) {
        const int value = ExtendCoefficient(in.ReadBits(size), size);
        block[kNaturalOrder[static_cast<std::size_t>(position)]] = static_cast<std::int16_t>(value);
    }
    in.Refill();
    return position + 1;
}

// Decodes the AC coefficients of a block that is all zeros but for the first one. Returns one past
// the zigzag position of the last one.
inline int DecodeAc(const HuffmanTable& table, BitCursor& in, std::int16_t* block) {
    int position = 1;
    for (;;) {
        Pair entry;
        std::uint64_t bitsBefore = 0;
        int behindFirst = 0;
        int behind = 0;
        const auto look = [&] {
            bitsBefore = in.bits;
            entry = table.LookUpPair(in.bits >> (64 - HuffmanTable::kPairBits));
            in.Consume(entry.Bits());
            behindFirst = position + entry.Advance();
            behind = behindFirst + entry.SecondAdvance();
            block[kOrderBehind[static_cast<std::size_t>(behindFirst)]] =
                static_cast<std::int16_t>(entry.Value());
            block[kOrderBehind[static_cast<std::size_t>(behind)]] =
                static_cast<std::int16_t>(entry.SecondValue());
            if (behind >= kBlockSize) return true;
            position = behind;
            return false;
        };
        bool ended = false;
        for (int looks = 0; looks < kLooksARefill && !ended; ++looks) ended = look();
        if (!ended) {
            in.Refill();
            continue;
        }
        // The end of the block, as the first symbol or as the second one.
        if (behind > Pair::kEnd && behind < Pair::kEnd + kBlockSize) [[likely]] {
            return behind - Pair::kEnd;
        }
        if (entry.Advance() >= Pair::kLong) {
            position = DecodeLong(table, entry, in, block, position);
            if (position > Pair::kEnd) return position - Pair::kEnd;
            if (position == kBlockSize) return kBlockSize;
            continue;
        }
        // The second one fills the block.
        if (behindFirst < kBlockSize && behind == kBlockSize) return kBlockSize;
        if (behindFirst != kBlockSize) Fail(kJpegErrorCorrupt);
        // The first one fills the block; the second one belongs to the next.
        in.bits = bitsBefore << entry.FirstBits();
        in.count += static_cast<std::uint32_t>(entry.Bits() - entry.FirstBits());
        return kBlockSize;
    }
}

}  // namespace

void SegmentDecoder::BeginScan(const JpegScan& scan, const JpegTables& tables, int restartInterval,
                               AllocationTable& allocations) {
    blocksPerMcu = static_cast<std::size_t>(scan.blocksPerMcu);
    for (std::size_t i = 0; i < blocksPerMcu; ++i) {
        const auto component = static_cast<std::size_t>(scan.blockComponents[i]);
        blockCodes[i] = {
            tables.huffman[static_cast<std::size_t>(scan.dcSlot[component])].derived.get(),
            tables.huffman[static_cast<std::size_t>(scan.acSlot[component])].derived.get(),
            component};
    }
    for (std::size_t i = 0; i < blocksPerMcu; ++i) {
        if (i == 0 || blockCodes[i].ac != blockCodes[i - 1].ac) blockCodes[i].ac->PrefetchPairs();
    }
    state.BeginScan(restartInterval);
    const std::size_t bytes = EntropySegment::BufferBytes(input.Whole().size());
    reader.SetBuffer(allocations.AllocateArray<std::uint8_t>(bytes));
    reader.BeginScan();
}

void SegmentDecoder::DecodeMcus(int mcus, std::int16_t* coefficients, std::uint8_t* ends) {
    const std::size_t blocks = static_cast<std::size_t>(mcus) * blocksPerMcu;
    std::fill_n(coefficients, blocks * kBlockSize, std::int16_t{0});
    for (int mcu = 0; mcu < mcus; ++mcu) {
        state.BeginMcu(input, reader);
        BitCursor in = reader.cursor;
        for (std::size_t i = 0; i < blocksPerMcu; ++i, coefficients += kBlockSize) {
            const BlockCode& code = blockCodes[i];
            in.Refill();
            const int difference = DecodeDcDifference(*code.dc, in);
            const std::int32_t dc = state.AddToPrediction(code.component, difference);
            coefficients[0] = static_cast<std::int16_t>(dc);
            *ends++ = static_cast<std::uint8_t>(DecodeAc(*code.ac, in, coefficients));
        }
        reader.cursor = in;
    }
}

}  // namespace marvolen
