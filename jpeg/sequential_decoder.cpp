// Huffman decoding of sequential scans, ITU-T T.81, F.2.2.
//
// The direct table of HuffmanTable gives most coefficients whole: one look at the next bits yields
// the run, the value and the bits to drop. Longer ones take the ordinary way, symbol first, value
// bits second, with the same outcome.

#include "jpeg/sequential_decoder.h"

#include "jpeg/huffman_table.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace marvolen {
namespace {

// What the blocks of one component are decoded with.
struct ComponentTables {
    const HuffmanTable* dc;
    const HuffmanTable* ac;
    const std::int16_t* quantisation;  // zigzag order; null leaves coefficients as they are
};

struct Quantised {
    static int Apply(const ComponentTables&, int value, int) { return value; }
};
struct Dequantised {
    static int Apply(const ComponentTables& tables, int value, int k) {
        return static_cast<int>(static_cast<std::uint32_t>(value) *
                                static_cast<std::uint32_t>(tables.quantisation[k]));
    }
};

std::uint32_t PeekDirect(const FastBitReader& reader) {
    return reader.Peek(HuffmanTable::kDirectBits);
}
std::uint32_t PeekDirect(const PlainBitReader& reader) {
    return reader.Peek16() >> (16 - HuffmanTable::kDirectBits);
}

// Reads the value bits that follow a symbol.
template <class BitReader>
int ReadCoefficient(BitReader& reader, int size) {
    return ExtendCoefficient(reader.ReadBits(size), size);
}

template <class BitReader>
int DecodeDcDifference(const HuffmanTable& table, BitReader& reader) {
    const HuffmanTable::Direct direct = table.LookUp(PeekDirect(reader));
    if (direct.IsCoefficient()) {
        reader.Consume(direct.Bits());
        return direct.Value();
    }
    const int size = table.DecodeSymbol(reader);
    if (size > 15) Fail(kJpegErrorCorrupt);
    return size == 0 ? 0 : ReadCoefficient(reader, size);
}

// Decodes the AC coefficients of a block whose positions 1..63 are 0. Returns one past the zigzag
// position of the last one.
template <class Scaling, class BitReader>
int DecodeAc(const ComponentTables& tables, BitReader& reader, std::int16_t* block) {
    const HuffmanTable& table = *tables.ac;
    int k = 1;
    while (k < kBlockSize) {
        const HuffmanTable::Direct direct = table.LookUp(PeekDirect(reader));
        int value;
        if (direct.IsCoefficient()) [[likely]] {
            reader.Consume(direct.Bits());
            k += direct.Run();
            value = direct.Value();
            if (k >= kBlockSize) Fail(kJpegErrorCorrupt);
        } else {
            int symbol;
            if (direct.IsSymbol()) {
                reader.Consume(direct.Bits());
                symbol = direct.Value();
            } else {
                symbol = table.DecodeSymbol(reader);
            }
            const int size = symbol & 15;
            if (size == 0) {
                if (symbol != kZeroRun) break;
                if (k + 15 >= kBlockSize) Fail(kJpegErrorCorrupt);
                k += 16;
                continue;
            }
            k += symbol >> 4;
            if (k >= kBlockSize) Fail(kJpegErrorCorrupt);
            value = ReadCoefficient(reader, size);
        }
        block[kNaturalOrder[static_cast<std::size_t>(k)]] =
            static_cast<std::int16_t>(Scaling::Apply(tables, value, k));
        ++k;
    }
    return k;
}

// Clears what the block's previous contents used of it.
void ClearBlock(std::int16_t* block, int lastIndex) {
    for (int k = 1; k < lastIndex; ++k) block[kNaturalOrder[static_cast<std::size_t>(k)]] = 0;
}

template <class Scaling, class BitReader>
void DecodeRow(const JpegScan& scan, const std::array<ComponentTables, kMaxJpegComponents>& tables,
               JpegInput& input, BitReader& readerInDecoder, EntropyState& state, McuRow& row) {
    BitReader reader = readerInDecoder;
    std::int16_t* block = row.coefficients;
    std::uint8_t* lastIndex = row.ends.data();
    for (int mcu = 0; mcu < scan.mcusPerRow; ++mcu) {
        state.BeginMcu(input, reader);
        for (int i = 0; i < scan.blocksPerMcu; ++i, block += kBlockSize, ++lastIndex) {
            const auto component =
                static_cast<std::size_t>(scan.blockComponents[static_cast<std::size_t>(i)]);
            const ComponentTables& use = tables[component];
            ClearBlock(block, *lastIndex);
            const int difference = DecodeDcDifference(*use.dc, reader);
            const std::int32_t dc = state.AddToPrediction(component, difference);
            block[0] = static_cast<std::int16_t>(Scaling::Apply(use, dc, 0));
            *lastIndex = static_cast<std::uint8_t>(DecodeAc<Scaling>(use, reader, block));
        }
    }
    readerInDecoder = reader;
}

}  // namespace

void SequentialDecoder::BeginScan(JpegPath newPath, int restartInterval) {
    path = newPath;
    state.BeginScan(restartInterval);
    plainReader.GiveBack();
    if (path == JpegPath::Fast) {
        fastReader.PrimeForScan();
    } else {
        plainReader.PrimeForScan();
    }
}

void SequentialDecoder::DecodeMcuRow(const JpegFrame& frame, const JpegScan& scan, McuRow& row) {
    std::array<ComponentTables, kMaxJpegComponents> use{};
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.componentCount); ++i) {
        const auto component = static_cast<std::size_t>(scan.components[i]);
        use[component] = {
            tables.huffman[static_cast<std::size_t>(scan.dcSlot[component])].derived.get(),
            tables.huffman[static_cast<std::size_t>(scan.acSlot[component])].derived.get(),
            tables.QuantTable(frame.components[component].quantTable)};
    }
    if (path == JpegPath::Fast) {
        DecodeRow<Quantised>(scan, use, input, fastReader, state, row);
    } else {
        DecodeRow<Dequantised>(scan, use, input, plainReader, state, row);
    }
}

}  // namespace marvolen
