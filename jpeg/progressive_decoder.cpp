// Progressive decoding by spectral selection and successive approximation, ITU-T T.81, G.1.2.

#include "jpeg/progressive_decoder.h"

#include "jpeg/allocation_table.h"
#include "jpeg/huffman_table.h"

#include <algorithm>

namespace marvolen {
namespace {

std::size_t Natural(int k) {
    return kNaturalOrder[static_cast<std::size_t>(k)];
}

}  // namespace

std::int16_t* ProgressiveDecoder::CoefficientArray::Block(int blockRow, int blockColumn) const {
    if (blockRow < 0 || blockRow >= heightInBlocks || blockColumn < 0 ||
        blockColumn >= widthInBlocks) {
        Fail(kJpegErrorBlocks);
    }
    const auto index =
        static_cast<std::size_t>(blockRow) * static_cast<std::size_t>(widthInBlocks) +
        static_cast<std::size_t>(blockColumn);
    return base + index * coefficientsPerBlock;
}

void ProgressiveDecoder::AllocateArrays(const JpegFrame& frame, AllocationTable& allocations) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
        const int width = frame.components[i].horizontal * frame.mcusPerRow;
        const int height = frame.components[i].vertical * frame.mcuRows;
        const auto allocate = [&](std::size_t perBlock) {
            const std::size_t blocks =
                static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
            return CoefficientArray{allocations.AllocateArray<std::int16_t>(blocks * perBlock),
                                    width, height, perBlock};
        };
        arrays[i] = {allocate(1), allocate(kBlockSize)};
    }
}

ProgressiveDecoder::Procedure ProgressiveDecoder::ChooseProcedure(const JpegScan& scan) {
    switch (ProcedureOf(scan)) {
        case ProgressiveProcedure::DcFirst:
            return &ProgressiveDecoder::DcFirst;
        case ProgressiveProcedure::DcRefine:
            return &ProgressiveDecoder::DcRefine;
        case ProgressiveProcedure::AcFirst:
            return &ProgressiveDecoder::AcFirst;
        default:
            return &ProgressiveDecoder::AcRefine;
    }
}

void ProgressiveDecoder::DecodeScan(const JpegFrame& frame, const JpegScan& scan,
                                    int restartInterval) {
    state.BeginScan(restartInterval);
    reader.GiveBack();
    const std::uint64_t fillerBefore = input.FillerBytes();
    reader.PrimeForScan();
    const Procedure procedure = ChooseProcedure(scan);

    limits.BeginScan(scan);
    DecodeMcus(frame, scan, procedure);
    limits.EndScan(scan, restartInterval, input.FillerBytes() - fillerBefore);
    reader.PrimeForMarkers();
}

void ProgressiveDecoder::DecodeMcus(const JpegFrame& frame, const JpegScan& scan,
                                    Procedure procedure) {
    for (int mcuRow = 0; mcuRow < scan.mcuRows; ++mcuRow) {
        for (int mcuColumn = 0; mcuColumn < scan.mcusPerRow; ++mcuColumn) {
            state.BeginMcu(input, reader);
            DecodeMcu(frame, scan, procedure, mcuRow, mcuColumn);
        }
    }
}

void ProgressiveDecoder::DecodeMcu(const JpegFrame& frame, const JpegScan& scan,
                                   Procedure procedure, int mcuRow, int mcuColumn) {
    if (scan.componentCount == 1) {
        const auto component = static_cast<std::size_t>(scan.components[0]);
        (this->*procedure)(scan, component, mcuRow, mcuColumn);
        return;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(scan.componentCount); ++i) {
        const auto component = static_cast<std::size_t>(scan.components[i]);
        const int horizontal = frame.components[component].horizontal;
        const int vertical = frame.components[component].vertical;
        for (int row = mcuRow * vertical; row < (mcuRow + 1) * vertical; ++row) {
            for (int column = mcuColumn * horizontal; column < (mcuColumn + 1) * horizontal;
                 ++column) {
                (this->*procedure)(scan, component, row, column);
            }
        }
    }
}

const HuffmanTable& ProgressiveDecoder::DcTable(const JpegScan& scan, std::size_t component) const {
    return *tables.huffman[static_cast<std::size_t>(scan.dcSlot[component])].derived;
}

const HuffmanTable& ProgressiveDecoder::AcTable(const JpegScan& scan, std::size_t component) const {
    return *tables.huffman[static_cast<std::size_t>(scan.acSlot[component])].derived;
}

void ProgressiveDecoder::DcFirst(const JpegScan& scan, std::size_t component, int blockRow,
                                 int blockColumn) {
    std::int16_t* dc = arrays[component].dc.Block(blockRow, blockColumn);
    const int size = DcTable(scan, component).DecodeSymbol(reader);
    if (size > 15) Fail(kJpegErrorCorrupt);
    const int difference = size == 0 ? 0 : ExtendCoefficient(reader.ReadBits(size), size);
    *dc = ShiftLeft(state.AddToPrediction(component, difference), scan.approximationLow);
}

void ProgressiveDecoder::DcRefine(const JpegScan& scan, std::size_t component, int blockRow,
                                  int blockColumn) {
    std::int16_t* dc = arrays[component].dc.Block(blockRow, blockColumn);
    if (reader.ReadBits(1) == 0) return;
    *dc = static_cast<std::int16_t>(*dc | ShiftLeft(1, scan.approximationLow));
}

void ProgressiveDecoder::AcFirst(const JpegScan& scan, std::size_t component, int blockRow,
                                 int blockColumn) {
    std::int16_t* block = arrays[component].ac.Block(blockRow, blockColumn);
    if (state.endOfBandRun > 0) {
        --state.endOfBandRun;
        return;
    }
    const HuffmanTable& table = AcTable(scan, component);
    int k = scan.spectralStart;
    while (k <= scan.spectralEnd) {
        const int symbol = table.DecodeSymbol(reader);
        const int run = symbol >> 4;
        const int size = symbol & 15;
        if (size != 0) {
            k += run;
            if (k > 63) Fail(kJpegErrorCorrupt);
            const int value = ExtendCoefficient(reader.ReadBits(size), size);
            block[Natural(k)] = ShiftLeft(value, scan.approximationLow);
            ++k;
        } else if (run == kLongRun) {
            if (k + 15 > 63) Fail(kJpegErrorCorrupt);
            k += 16;
        } else {
            state.endOfBandRun = 1U << run;
            if (run > 0) state.endOfBandRun += reader.ReadBits(run);
            --state.endOfBandRun;
            break;
        }
    }
}

void ProgressiveDecoder::AcRefine(const JpegScan& scan, std::size_t component, int blockRow,
                                  int blockColumn) {
    std::int16_t* block = arrays[component].ac.Block(blockRow, blockColumn);
    const int bit = scan.approximationLow;
    const int end = scan.spectralEnd;
    const HuffmanTable& table = AcTable(scan, component);
    int k = scan.spectralStart;
    while (state.endOfBandRun == 0 && k <= end) {
        const int symbol = table.DecodeSymbol(reader);
        const int run = symbol >> 4;
        const int size = symbol & 15;
        if (size > 1) Fail(kJpegErrorCorrupt);
        if (size == 0 && run != kLongRun) {
            state.endOfBandRun = 1U << run;
            if (run > 0) state.endOfBandRun += reader.ReadBits(run);
            break;
        }
        const bool positive = size == 1 && reader.ReadBits(1) == 1;
        k = RefineNonZero(block, k, end, run, bit);
        if (k > end) Fail(kJpegErrorCorrupt);
        if (size == 1) block[Natural(k)] = ShiftLeft(positive ? 1 : -1, bit);
        ++k;
    }
    if (state.endOfBandRun > 0) {
        RefineNonZero(block, k, end, kBlockSize, bit);
        --state.endOfBandRun;
    }
}

// Reads a correction bit for each non-zero coefficient from position k to end, and stops at
// the zero coefficient that follows zerosToSkip other ones. Returns that position, or end + 1.
int ProgressiveDecoder::RefineNonZero(std::int16_t* block, int k, int end, int zerosToSkip,
                                      int bit) {
    for (; k <= end; ++k) {
        std::int16_t& coefficient = block[Natural(k)];
        if (coefficient == 0) {
            if (zerosToSkip-- == 0) break;
        } else if (reader.ReadBits(1) == 1) {
            const int correction = ShiftLeft(coefficient > 0 ? 1 : -1, bit);
            coefficient = static_cast<std::int16_t>(coefficient + correction);
        }
    }
    return k;
}

void ProgressiveDecoder::AssembleMcuRow(const JpegFrame& frame, const JpegScan& scan, int mcuRow,
                                        JpegPath path, McuRow& row) const {
    std::int16_t* out = row.coefficients;
    const auto assemble = [&](std::size_t component, int blockRow, int blockColumn) {
        const std::int16_t* ac = arrays[component].ac.Block(blockRow, blockColumn);
        std::copy_n(ac, kBlockSize, out);
        out[0] = *arrays[component].dc.Block(blockRow, blockColumn);
        if (path == JpegPath::Plain) {
            const std::int16_t* table = tables.QuantTable(frame.components[component].quantTable);
            for (int k = 0; k < kBlockSize; ++k) {
                out[Natural(k)] = static_cast<std::int16_t>(out[Natural(k)] * table[k]);
            }
        }
        out += kBlockSize;
    };
    for (int mcuColumn = 0; mcuColumn < scan.mcusPerRow; ++mcuColumn) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(frame.componentCount); ++i) {
            const int horizontal = frame.components[i].horizontal;
            const int vertical = frame.components[i].vertical;
            for (int block = 0; block < horizontal * vertical; ++block) {
                assemble(i, mcuRow * vertical + block / horizontal,
                         mcuColumn * horizontal + block % horizontal);
            }
        }
    }
}

}  // namespace marvolen
