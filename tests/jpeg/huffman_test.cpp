// Huffman decoding of 16-bit windows, against a search through the list of codes.

#include "jpeg/huffman_table.h"
#include "tests/jpeg/corpus.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <utility>

namespace marvolen::test {
namespace {

struct Code {
    std::uint32_t code;
    int length, symbol;
};

// Symbol and length of what the window begins with. What no code begins with is symbol 0: by the
// length of symbol 0's code within eight bits, else by as many bits as codes share with it and one.
std::pair<int, int> Search(const std::vector<Code>& codes, std::uint32_t window) {
    const auto lengthOf = [&](int symbol) {
        int length = 0;
        for (const Code& code : codes) length = code.symbol == symbol ? code.length : length;
        return length;
    };
    int shared = 0;
    for (const auto& [code, length, symbol] : codes) {
        int same = 0;
        while (same < length && (window >> (15 - same) & 1) == (code >> (length - 1 - same) & 1)) {
            ++same;
        }
        if (same == length) return {symbol, length <= 8 ? lengthOf(symbol) : length};
        if (length > 8) shared = std::max(shared, same);
    }
    return {0, shared < 8 ? lengthOf(0) : shared + 1};
}

// A bit reader over one window.
struct WindowReader {
    std::uint32_t window;
    int consumed = 0;
    std::uint32_t Peek16() const { return window; }
    void Consume(int count) { consumed += count; }
};

void CheckTable(const std::array<std::uint8_t, 17>& counts, const Bytes& symbols) {
    std::vector<Code> codes;
    std::uint32_t next = 0;
    for (int length = 1; length <= 16; ++length, next *= 2) {
        for (int i = 0; i < counts[static_cast<std::size_t>(length)]; ++i) {
            codes.push_back({next++, length, symbols[codes.size()]});
        }
    }
    const auto table = std::make_unique<HuffmanTable>();
    for (const bool dc : {false, true}) {
        table->Build(counts.data(), symbols.data(),
                     dc ? HuffmanTable::Use::Dc : HuffmanTable::Use::Ac);
        for (std::uint32_t window = dc ? 2 : 0; window < 65536; window += dc ? 13 : 3) {
            const auto [symbol, length] = Search(codes, window);
            WindowReader reader{window};
            ASSERT_EQ(table->DecodeSymbol(reader), symbol) << window;
            ASSERT_EQ(reader.consumed, length) << window;
            const auto direct = table->LookUp(window >> (16 - HuffmanTable::kDirectBits));
            ASSERT_TRUE(direct.IsSymbol() || direct.IsCoefficient() || length > 8) << window;
            const bool whole = direct.IsCoefficient();
            if (!whole && !direct.IsSymbol()) continue;
            const int size = !whole ? 0 : dc ? symbol : symbol & 15;
            const std::uint32_t bits = window << length >> (16 - size) & ((1U << size) - 1);
            const int value = size == 0 ? 0 : ExtendCoefficient(bits, size);
            ASSERT_EQ(direct.Bits(), whole ? length + size : length) << window;
            ASSERT_EQ(direct.Value(), whole ? value : symbol) << window;
            ASSERT_EQ(direct.Run(), whole && !dc ? symbol >> 4 : 0) << window;
        }
    }
}

TEST(HuffmanTableTest, DecodesAsASearchWould) {
    std::mt19937 random(3);
    for (std::size_t round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        std::array<std::uint8_t, 17> counts{};
        std::uint32_t room = 65536;
        Bytes symbols;
        for (std::size_t length = 2; length <= 16; ++length) {
            const auto wish = static_cast<std::uint32_t>(random() % (length < 6 ? 3 : 20));
            const auto left = static_cast<std::uint32_t>(255 - symbols.size());
            const std::uint32_t count = std::min({room >> (16 - length), wish, left});
            counts[length] = static_cast<std::uint8_t>(count);
            room -= count << (16 - length);
            // Some tables lack symbol 0, some have symbols twice.
            for (std::uint32_t i = 0; i < count; ++i) {
                const auto symbol = round % 3 == 2 ? random() % 40 : symbols.size() + round % 3;
                symbols.push_back(static_cast<std::uint8_t>(symbol));
            }
        }
        CheckTable(counts, symbols);
    }
    // The largest tree: a full subtree of 254 codes, and one long code alone in the next.
    Bytes symbols;
    for (int i = 0; i < 255; ++i) symbols.push_back(static_cast<std::uint8_t>(255 - i));
    CheckTable({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 253}, symbols);
    CheckTable({}, {});
}

}  // namespace
}  // namespace marvolen::test
