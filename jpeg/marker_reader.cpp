#include "jpeg/marker_reader.h"

#include "jpeg/jpeg_error.h"

#include <algorithm>
#include <array>

namespace marvolen {
namespace {

constexpr int kStartOfImageSearchBytes = 511;
constexpr int kMaxHuffmanCodes = 255;

}  // namespace

void MarkerReader::FindStartOfImage() {
    int previous = Read8();
    int current = Read8();
    if (previous == 0xFF && current == kMarkerSoi) return;
    for (int i = 0; i < kStartOfImageSearchBytes; ++i) {
        previous = current;
        current = Read8();
        if (previous != 0xFF || current != kMarkerSoi) continue;
        // In junk FF D8 may be chance. The FF of the next marker stays unread.
        if (reader.Peek16() >> 8 != 0xFF) break;
        return;
    }
    Fail(kJpegErrorNoImage);
}

std::uint8_t MarkerReader::NextMarker() {
    for (;;) {
        while (Read8() != 0xFF) {
        }
        int code = 0xFF;
        while (code == 0xFF) code = Read8();
        if (code == 0) continue;
        switch (code) {
            case kMarkerDht:
                ReadHuffmanTables();
                continue;
            case kMarkerDqt:
                ReadQuantTables();
                continue;
            case kMarkerDri:
                ReadRestartInterval();
                continue;
            case kMarkerDac:
                Fail(kJpegErrorArithmetic);
            case kMarkerTem:
            case kMarkerJpg:
                Fail(kJpegErrorMarker);
            default:
                break;
        }
        if (code >= kMarkerRst0 && code <= kMarkerRst7) Fail(kJpegErrorMarker);
        if (code >= kMarkerSof0 && code <= kMarkerSos) return static_cast<std::uint8_t>(code);
        SkipSegment();
    }
}

void MarkerReader::SkipSegment() {
    const int length = Read16();
    if (length < 2) Fail(kJpegErrorSegmentLength);
    for (int i = 2; i < length; ++i) Read8();
}

void MarkerReader::ReadRestartInterval() {
    if (Read16() != 4) Fail(kJpegErrorRestartLength);
    restartInterval = Read16();
}

void MarkerReader::ReadHuffmanTables() {
    int remainder = Read16() - 2;
    if (remainder < 0) Fail(kJpegErrorHuffmanLength);
    while (remainder != 0) {
        const int classAndNumber = Read8();
        std::array<std::uint8_t, 17> counts{};
        int total = 0;
        for (std::size_t length = 1; length <= 16; ++length) {
            counts[length] = static_cast<std::uint8_t>(Read8());
            total += counts[length];
        }
        if (total > kMaxHuffmanCodes) Fail(kJpegErrorHuffmanCodes);
        std::array<std::uint8_t, 256> symbols{};
        for (int i = 0; i < total; ++i) {
            symbols[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(Read8());
        }
        if (remainder < total + 17) Fail(kJpegErrorHuffmanLength);
        remainder -= total + 17;
        const int slotNumber = (classAndNumber & 15) + kFirstAcSlot * (classAndNumber >> 4 & 1);
        if (slotNumber >= kHuffmanSlots) Fail(kJpegErrorHuffmanSlot);
        // Last, so that it hides none of the other errors.
        if (!HuffmanTable::FitsCodeSpace(counts.data())) Fail(kJpegErrorHuffmanCodes);
        HuffmanSlot& slot = tables.huffman[static_cast<std::size_t>(slotNumber)];
        if (slot.counts == nullptr) {
            slot.counts = allocations.AllocateArray<std::uint8_t>(counts.size());
            slot.symbols = allocations.AllocateArray<std::uint8_t>(symbols.size());
        }
        std::copy(counts.begin(), counts.end(), slot.counts);
        std::copy(symbols.begin(), symbols.end(), slot.symbols);
        slot.changed = true;
    }
}

void MarkerReader::ReadQuantTables() {
    int remainder = Read16() - 2;
    if (remainder < 0) Fail(kJpegErrorQuantLength);
    while (remainder != 0) {
        const bool wide = Read4() != 0;
        const auto number = static_cast<std::size_t>(Read4());
        if (number >= kQuantTables) Fail(kJpegErrorQuantSlot);
        std::int16_t*& table = tables.quantisation[number];
        if (table == nullptr) table = allocations.AllocateArray<std::int16_t>(kBlockSize);
        for (std::size_t k = 0; k < kBlockSize; ++k) {
            const int entry = wide ? Read16() : Read8();
            if (path == JpegPath::Fast) {
                const std::size_t position = kNaturalOrder[k];
                table[position] =
                    static_cast<std::int16_t>((kAanScale[position] * entry + 2048) >> 12);
            } else {
                table[k] = static_cast<std::int16_t>(entry);
            }
        }
        const int used = wide ? 129 : 65;
        if (remainder < used) Fail(kJpegErrorQuantShort);
        remainder -= used;
    }
}

void MarkerReader::ReadFrameHeader(JpegFrame& frame) {
    const int length = Read16();
    if (Read8() != 8) Fail(kJpegErrorPrecision);
    const int height = Read16();
    if (height < 1 || height > kMaxJpegSize) Fail(kJpegErrorHeight);
    const int width = Read16();
    if (width < 1 || width > kMaxJpegSize) Fail(kJpegErrorWidth);
    const int componentCount = Read8();
    if (componentCount > kMaxJpegComponents) Fail(kJpegErrorFrameComponents);
    if (length != 8 + 3 * componentCount) Fail(kJpegErrorFrameLength);
    frame.height = height;
    frame.width = width;
    frame.componentCount = componentCount;
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount); ++i) {
        JpegComponent& component = frame.components[i];
        component.identifier = Read8();
        component.horizontal = Read4();
        component.vertical = Read4();
        component.quantTable = Read8();
    }
}

void MarkerReader::ReadScanHeader(const JpegFrame& frame, JpegScan& scan) {
    const int length = Read16();
    const int componentCount = Read8();
    if (length != 6 + 2 * componentCount || componentCount < 1 ||
        componentCount > kMaxJpegComponents) {
        Fail(kJpegErrorScanLength);
    }
    scan.componentCount = componentCount;
    for (std::size_t i = 0; i < static_cast<std::size_t>(componentCount); ++i) {
        const int identifier = Read8();
        std::size_t index = 0;
        const auto count = static_cast<std::size_t>(frame.componentCount);
        while (index < count && frame.components[index].identifier != identifier) ++index;
        if (index == count) Fail(kJpegErrorScanComponent);
        scan.components[i] = static_cast<int>(index);
        scan.dcSlot[index] = Read4();
        scan.acSlot[index] = kFirstAcSlot + Read4();
    }
    scan.spectralStart = Read8();
    scan.spectralEnd = Read8();
    scan.approximationHigh = Read4();
    scan.approximationLow = Read4();
    if (!frame.progressive) {
        scan.spectralStart = 0;
        scan.spectralEnd = 63;
    }
}

}  // namespace marvolen
