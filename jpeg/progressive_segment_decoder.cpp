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

// A symbol together with its value bits where one look sees both. Leaves 25 bits or more.
struct Symbol {
    int run;
    bool hasValue;
    int value;
};

[[gnu::always_inline]] inline Symbol ReadSymbol(const HuffmanTable& table, BitCursor& in) {
    in.Refill();
    const HuffmanTable::Direct direct = table.LookUp(in.Peek(HuffmanTable::kDirectBits));
    if (direct.IsCoefficient()) [[likely]] {
        in.Consume(direct.Bits());
        return {direct.Run(), true, direct.Value()};
    }
    HuffmanTable::Decoded decoded = {direct.Value(), direct.Bits()};
    if (!direct.IsSymbol()) decoded = table.DecodeWindow(in.Peek16());
    in.Consume(decoded.length);
    const int size = decoded.symbol & 15;
    const int value = size == 0 ? 0 : ExtendCoefficient(in.ReadBits(size), size);
    return {decoded.symbol >> 4, size != 0, value};
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
    ForEachBlock(
        frame, scan, [&](BitCursor& in, std::size_t component, const CoefficientBlock& block) {
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
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const CoefficientBlock& block) {
        in.Refill();
        if (in.ReadBits(1) == 0) return;
        block.coefficients[0] = static_cast<std::int16_t>(block.coefficients[0] | bit);
    });
}

void ProgressiveSegmentDecoder::AcFirst(const JpegFrame& frame, const JpegScan& scan) {
    const auto slot =
        static_cast<std::size_t>(scan.acSlot[static_cast<std::size_t>(scan.components[0])]);
    const HuffmanTable& table = *tables.huffman[slot].derived;
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const CoefficientBlock& block) {
        if (state.endOfBandRun > 0) {
            --state.endOfBandRun;
            return;
        }
        std::uint64_t nonZero = *block.nonZero;
        for (int k = scan.spectralStart; k <= scan.spectralEnd; ++k) {
            const Symbol symbol = ReadSymbol(table, in);
            if (!symbol.hasValue && symbol.run != kLongRun) {
                // Of the blocks that it ends this is the first one.
                const std::uint32_t more = symbol.run > 0 ? in.ReadBits(symbol.run) : 0;
                state.endOfBandRun = (1U << symbol.run) + more - 1;
                break;
            }
            k += symbol.run;
            if (k > 63) Fail(kJpegErrorCorrupt);
            if (!symbol.hasValue) continue;
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
    const AcRefinement refinement = {&table,
                                     table.DirectTable(),
                                     kNaturalOrder.data(),
                                     scan.spectralStart,
                                     scan.spectralEnd,
                                     ShiftLeft(1, scan.approximationLow)};
    const std::uint64_t band = BitsBetween(scan.spectralStart, scan.spectralEnd);
    ForEachBlock(frame, scan, [&](BitCursor& in, std::size_t, const CoefficientBlock& block) {
        if (state.endOfBandRun > 0 && (*block.nonZero & band) == 0) {
            --state.endOfBandRun;
        } else if (!kernels.refineBlock(refinement, in, state.endOfBandRun, block)) {
            Fail(kJpegErrorCorrupt);
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
                    const CoefficientBlock block =
                        arrays[i].At(mcuRow * factors.vertical + y, mcu * factors.horizontal + x);
                    std::copy_n(block.coefficients, kBlockSize, coefficients);
                    *ends++ = EndOf(*block.nonZero);
                }
            }
        }
    }
}

}  // namespace marvolen
