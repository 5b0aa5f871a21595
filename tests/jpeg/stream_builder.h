#pragma once

#include "tests/jpeg/test_encoder.h"

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace marvolen::test {

// Writes JPEG streams by hand, segment after segment and bit after bit, sound or not.
//
// Its Huffman codes are as plain as can be: DcTable gives size s the 4-bit code s, AcTable
// gives symbol i of its list the 8-bit code i.
class StreamBuilder {
public:
    struct Component {
        int identifier;
        int sampling;  // H in the high, V in the low nibble
        int quantTable = 0;
    };
    struct ScanComponent {
        int identifier;
        int tables = 0;  // DC in the high, AC in the low nibble
    };
    // Ss, Se, and Ah and Al in one byte.
    struct ScanParameters {
        int spectralStart = 0;
        int spectralEnd = 63;
        int approximation = 0;
    };

    StreamBuilder& Raw(const Bytes& raw) {
        bytes.insert(bytes.end(), raw.begin(), raw.end());
        return *this;
    }
    StreamBuilder& Marker(int code) { return Raw({0xFF, Byte(code)}); }
    StreamBuilder& Soi() { return Marker(0xD8); }
    StreamBuilder& Eoi() { return Marker(0xD9); }

    // A segment whose length field is right, plus lengthError.
    StreamBuilder& Segment(int code, const Bytes& payload, int lengthError = 0) {
        const int length = static_cast<int>(payload.size()) + 2 + lengthError;
        return Marker(code).Raw({Byte(length >> 8), Byte(length)}).Raw(payload);
    }

    // A table of 64 equal entries.
    static Bytes QuantTable(int number, int entry, int entryBits = 8) {
        Bytes table = {Byte(number | (entryBits == 16 ? 0x10 : 0))};
        for (int k = 0; k < 64; ++k) {
            if (entryBits == 16) table.push_back(Byte(entry >> 8));
            table.push_back(Byte(entry));
        }
        return table;
    }
    StreamBuilder& Dqt(int number = 0, int entry = 1) {
        return Segment(0xDB, QuantTable(number, entry));
    }

    // A table with counts codes of each length, padded to 16 lengths.
    static Bytes HuffmanTable(int classAndNumber, Bytes counts, const Bytes& symbols) {
        counts.resize(16);
        Bytes table = std::move(counts);
        table.insert(table.begin(), Byte(classAndNumber));
        table.insert(table.end(), symbols.begin(), symbols.end());
        return table;
    }
    static Bytes DcTable(int number = 0) {
        return HuffmanTable(number, {0, 0, 0, 12}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    }
    static Bytes AcTable(const Bytes& symbols, int number = 0) {
        return HuffmanTable(0x10 | number,
                            {0, 0, 0, 0, 0, 0, 0, Byte(static_cast<int>(symbols.size()))}, symbols);
    }
    StreamBuilder& Dht(const Bytes& tables) { return Segment(0xC4, tables); }

    StreamBuilder& Sof(int code, int width, int height, const std::vector<Component>& components,
                       int precision = 8, int lengthError = 0) {
        Bytes payload = {Byte(precision), Byte(height >> 8),
                         Byte(height),    Byte(width >> 8),
                         Byte(width),     Byte(static_cast<int>(components.size()))};
        for (const Component& component : components) {
            payload.push_back(Byte(component.identifier));
            payload.push_back(Byte(component.sampling));
            payload.push_back(Byte(component.quantTable));
        }
        return Segment(code, payload, lengthError);
    }

    StreamBuilder& Sos(const std::vector<ScanComponent>& components, ScanParameters parameters,
                       int lengthError = 0) {
        Bytes payload = {Byte(static_cast<int>(components.size()))};
        for (const ScanComponent& component : components) {
            payload.push_back(Byte(component.identifier));
            payload.push_back(Byte(component.tables));
        }
        payload.push_back(Byte(parameters.spectralStart));
        payload.push_back(Byte(parameters.spectralEnd));
        payload.push_back(Byte(parameters.approximation));
        return Segment(0xDA, payload, lengthError);
    }
    StreamBuilder& Sos(const std::vector<ScanComponent>& components) { return Sos(components, {}); }

    // Appends the low count bits of value to the entropy-coded data, with stuffed zeros.
    StreamBuilder& Bits(int value, int count) {
        while (count-- > 0) {
            bitBuffer = bitBuffer << 1 | (value >> count & 1);
            if (++bitCount == 8) PutEntropyByte();
        }
        return *this;
    }
    // A DC difference, with DcTable.
    StreamBuilder& Dc(int difference) {
        int size = 0;
        while (std::abs(difference) >> size != 0) ++size;
        return Bits(size, 4).Bits(difference < 0 ? difference + (1 << size) - 1 : difference, size);
    }
    // Pads the last byte of entropy-coded data with ones.
    StreamBuilder& Flush() {
        while (bitCount != 0) Bits(1, 1);
        return *this;
    }

    const Bytes& Take() {
        Flush();
        return bytes;
    }

private:
    static std::uint8_t Byte(int value) { return static_cast<std::uint8_t>(value & 0xFF); }
    void PutEntropyByte() {
        bytes.push_back(Byte(bitBuffer));
        if (Byte(bitBuffer) == 0xFF) bytes.push_back(0);
        bitBuffer = bitCount = 0;
    }

    Bytes bytes;
    int bitBuffer = 0;
    int bitCount = 0;
};

// AC symbols of the streams below, and their 8-bit codes: end of block, sixteen zeros, and one
// coefficient of size 1 after 0, 14 or 15 zeros.
inline const Bytes kAcSymbols = {0x00, 0xF0, 0x01, 0xE1, 0xF1};
inline constexpr int kEob = 0;
inline constexpr int kZrl = 1;
inline constexpr int kOne = 2;
inline constexpr int kOneAfter14 = 3;
inline constexpr int kOneAfter15 = 4;

// The usual beginning of a gray picture, up to its frame header.
inline StreamBuilder GrayHead(int width, int height, int restartInterval = 0, int sof = 0xC0) {
    StreamBuilder stream;
    stream.Soi().Dqt().Dht(StreamBuilder::DcTable()).Dht(StreamBuilder::AcTable(kAcSymbols));
    if (restartInterval != 0) {
        stream.Segment(0xDD, {0, static_cast<std::uint8_t>(restartInterval)});
    }
    stream.Sof(sof, width, height, {{1, 0x11}});
    return stream;
}

}  // namespace marvolen::test
