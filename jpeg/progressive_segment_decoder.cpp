#include "jpeg/progressive_segment_decoder.h"

#include "jpeg/allocation_table.h"
#include "jpeg/huffman_table.h"
#include "jpeg/jpeg_error.h"

#include <algorithm>
#include <bit>

namespace marvolen {
namespace {

std::size_t NaturalPosition(int k) {
    return kNaturalOrder[static_cast<std::size_t>(k)];
}

constexpr std::uint64_t BitAt(int k) {
    return std::uint64_t{1} << k;
}

// Bits first to last, of which last may be one less than first.
constexpr std::uint64_t BitsBetween(int first, int last) {
    return (std::uint64_t{2} << last) - (std::uint64_t{1} << first);
}

// A symbol together with its value bits where one look sees both. Leaves 25 bits or more.
struct Symbol {
    int run;
    int size;  // 0: no value
    int value;
};

Symbol ReadSymbol(const HuffmanTable& table, BitCursor& in) {
    in.Refill();
    const HuffmanTable::Direct direct = table.LookUp(in.Peek(HuffmanTable::kDirectBits));
    if (direct.IsCoefficient()) [[likely]] {
        in.Consume(direct.Bits());
        // All that tells a size 1 from a larger one is the value.
        const int value = direct.Value();
        return {direct.Run(), value == 1 || value == -1 ? 1 : 2, value};
    }
    int symbol = direct.Value();
    if (direct.IsSymbol()) {
        in.Consume(direct.Bits());
    } else {
        symbol = table.DecodeSymbol(in);
    }
    const int size = symbol & 15;
    return {symbol >> 4, size, size == 0 ? 0 : ExtendCoefficient(in.ReadBits(size), size)};
}

// The blocks of an end of band, of which this is the first one.
std::uint32_t ReadEndOfBandRun(BitCursor& in, int run) {
    return (1U << run) + (run > 0 ? in.ReadBits(run) : 0);
}

// Reads a correction bit for each of the coefficients at the places, and adds to those that it
// tells to.
void Correct(std::int16_t* block, std::uint64_t places, std::int16_t step, BitCursor& in) {
    for (int left = 0; places != 0; places &= places - 1, --left) {
        if (left == 0) {
            in.Refill();
            left = BitCursor::kRefilled;
        }
        std::int16_t& coefficient = block[NaturalPosition(std::countr_zero(places))];
        const auto told = static_cast<int>(in.bits >> 63);
        in.Drop(1);
        const int sign = (coefficient >> 15) | 1;
        coefficient = static_cast<std::int16_t>(coefficient + sign * step * told);
    }
}

// One past the highest position that isn't zero, or 1.
std::uint8_t EndOf(std::uint64_t nonZero) {
    return static_cast<std::uint8_t>(std::bit_width(nonZero | 1));
}

}  // namespace

void ProgressiveSegmentDecoder::AllocateArrays(const JpegFrame& frame,
                                               AllocationTable& allocations) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const int width = frame.components[i].horizontal * frame.mcusPerRow;
        const int height = frame.components[i].vertical * frame.mcuRows;
        const std::size_t blocks =
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        arrays[i] = {allocations.AllocateArray<std::int16_t>(blocks * kBlockSize),
                     allocations.AllocateArray<std::uint64_t>(blocks), width};
    }
    const std::size_t bytes = EntropySegment::BufferBytes(input.Whole().size());
    reader.SetBuffer(allocations.AllocateArray<std::uint8_t>(bytes));
}

void ProgressiveSegmentDecoder::DecodeScan(const JpegFrame& frame, const JpegScan& scan,
                                           int restartInterval) {
    state.BeginScan(restartInterval);
    markerReader.GiveBack();
    reader.BeginScan();
    const ProgressiveProcedure procedure = ProcedureOf(scan);
    limits.BeginScan(scan);
    DecodeBlocks(frame, scan, procedure);
    reader.Leave();
    limits.EndScan(scan, restartInterval, reader.FillerBytes());
    markerReader.PrimeForMarkers();
}

void ProgressiveSegmentDecoder::DecodeBlocks(const JpegFrame& frame, const JpegScan& scan,
                                             ProgressiveProcedure procedure) {
    switch (procedure) {
        case ProgressiveProcedure::DcFirst:
            DcFirst(frame, scan);
            break;
        case ProgressiveProcedure::DcRefine:
            DcRefine(frame, scan);
            break;
        case ProgressiveProcedure::AcFirst:
            AcFirst(frame, scan);
            break;
        case ProgressiveProcedure::AcRefine:
            AcRefine(frame, scan);
            break;
    }
}

void ProgressiveSegmentDecoder::BeginMcu(BitCursor& in) {
    if (!state.HasRestarts() && !reader.NearsEnd(in)) [[likely]]
        return;
    reader.cursor = in;
    state.BeginMcu(input, reader);
    in = reader.cursor;
}

template <class Decode>
void ProgressiveSegmentDecoder::ForEachBlock(const JpegFrame& frame, const JpegScan& scan,
                                             Decode&& decode) {
    BitCursor in = reader.cursor;
    const bool interleaved = scan.componentCount > 1;
    for (int mcuRow = 0; mcuRow < scan.mcuRows; ++mcuRow) {
        for (int mcu = 0; mcu < scan.mcusPerRow; ++mcu) {
            BeginMcu(in);
            for (int i = 0; i < scan.componentCount; ++i) {
                const auto component =
                    static_cast<std::size_t>(scan.components[static_cast<std::size_t>(i)]);
                const Array& array = arrays[component];
                if (!interleaved) {
                    decode(in, component, array.At(mcuRow, mcu));
                    break;
                }
                const JpegComponent& factors = frame.components[component];
                for (int y = 0; y < factors.vertical; ++y) {
                    for (int x = 0; x < factors.horizontal; ++x) {
                        decode(
                            in, component,
                            array.At(mcuRow * factors.vertical + y, mcu * factors.horizontal + x));
                    }
                }
            }
        }
    }
    reader.cursor = in;
}

void ProgressiveSegmentDecoder::DcFirst(const JpegFrame& frame, const JpegScan& scan) {
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t component, const Block& block) {
        const auto slot = static_cast<std::size_t>(scan.dcSlot[component]);
        const HuffmanTable& table = *tables.huffman[slot].derived;
        in.Refill();
        const HuffmanTable::Direct direct = table.LookUp(in.Peek(HuffmanTable::kDirectBits));
        int difference = direct.Value();
        if (direct.IsCoefficient()) [[likely]] {
            in.Consume(direct.Bits());
        } else {
            const int size = table.DecodeSymbol(in);
            if (size > 15) Fail(kJpegErrorCorrupt);
            difference = size == 0 ? 0 : ExtendCoefficient(in.ReadBits(size), size);
        }
        block.coefficients[0] =
            ShiftLeft(state.AddToPrediction(component, difference), scan.approximationLow);
    });
}

void ProgressiveSegmentDecoder::DcRefine(const JpegFrame& frame, const JpegScan& scan) {
    const std::int16_t bit = ShiftLeft(1, scan.approximationLow);
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const Block& block) {
        in.Refill();
        if (in.ReadBits(1) == 0) return;
        block.coefficients[0] = static_cast<std::int16_t>(block.coefficients[0] | bit);
    });
}

void ProgressiveSegmentDecoder::AcFirst(const JpegFrame& frame, const JpegScan& scan) {
    const auto slot =
        static_cast<std::size_t>(scan.acSlot[static_cast<std::size_t>(scan.components[0])]);
    const HuffmanTable& table = *tables.huffman[slot].derived;
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const Block& block) {
        if (state.endOfBandRun > 0) {
            --state.endOfBandRun;
            return;
        }
        std::uint64_t nonZero = *block.nonZero;
        for (int k = scan.spectralStart; k <= scan.spectralEnd; ++k) {
            const Symbol symbol = ReadSymbol(table, in);
            if (symbol.size == 0 && symbol.run != kLongRun) {
                state.endOfBandRun = ReadEndOfBandRun(in, symbol.run) - 1;
                break;
            }
            k += symbol.run;
            if (k > 63) Fail(kJpegErrorCorrupt);
            if (symbol.size == 0) continue;
            const std::int16_t value = ShiftLeft(symbol.value, scan.approximationLow);
            block.coefficients[NaturalPosition(k)] = value;
            nonZero = value != 0 ? nonZero | BitAt(k) : nonZero & ~BitAt(k);
        }
        *block.nonZero = nonZero;
    });
}

void ProgressiveSegmentDecoder::AcRefine(const JpegFrame& frame, const JpegScan& scan) {
    const auto slot =
        static_cast<std::size_t>(scan.acSlot[static_cast<std::size_t>(scan.components[0])]);
    const HuffmanTable& table = *tables.huffman[slot].derived;
    const std::int16_t step = ShiftLeft(1, scan.approximationLow);
    const int end = scan.spectralEnd;
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const Block& block) {
        const std::uint64_t before = *block.nonZero;
        int k = scan.spectralStart;
        while (state.endOfBandRun == 0 && k <= end) {
            const Symbol symbol = ReadSymbol(table, in);
            if (symbol.size > 1) Fail(kJpegErrorCorrupt);
            if (symbol.size == 0 && symbol.run != kLongRun) {
                state.endOfBandRun = ReadEndOfBandRun(in, symbol.run);
                break;
            }
            // The place is the zero coefficient that follows run other ones.
            std::uint64_t zeros = ~before & BitsBetween(k, end);
            for (int i = 0; i < symbol.run; ++i) zeros &= zeros - 1;
            const int place = zeros == 0 ? end + 1 : std::countr_zero(zeros);
            Correct(block.coefficients, before & BitsBetween(k, place - 1), step, in);
            if (place > end) Fail(kJpegErrorCorrupt);
            if (symbol.size == 1) {
                block.coefficients[NaturalPosition(place)] =
                    static_cast<std::int16_t>(symbol.value * step);
                *block.nonZero |= BitAt(place);
            }
            k = place + 1;
        }
        if (state.endOfBandRun > 0) {
            if (k <= end) Correct(block.coefficients, before & BitsBetween(k, end), step, in);
            --state.endOfBandRun;
        }
    });
}

void ProgressiveSegmentDecoder::AssembleMcus(const JpegFrame& frame, int mcuRow, int firstMcu,
                                             int mcus, std::int16_t* coefficients,
                                             std::uint8_t* ends) const {
    for (int mcu = firstMcu; mcu < firstMcu + mcus; ++mcu) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
            const JpegComponent& factors = frame.components[i];
            for (int y = 0; y < factors.vertical; ++y) {
                for (int x = 0; x < factors.horizontal; ++x, coefficients += kBlockSize) {
                    const Block block =
                        arrays[i].At(mcuRow * factors.vertical + y, mcu * factors.horizontal + x);
                    std::copy_n(block.coefficients, kBlockSize, coefficients);
                    *ends++ = EndOf(*block.nonZero);
                }
            }
        }
    }
}

}  // namespace marvolen
