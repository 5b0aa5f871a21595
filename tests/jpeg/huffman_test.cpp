// Huffman decoding of every 16-bit window, against a search through the list of codes.

#include "jpeg/huffman_table.h"
#include "tests/jpeg/test_encoder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace marvolen::test {
namespace {

struct Code {
    std::uint32_t code;
    int length;
    int symbol;
};

std::vector<Code> AssignCodes(const std::array<std::uint8_t, 17>& counts, const Bytes& symbols) {
    std::vector<Code> codes;
    std::uint32_t code = 0;
    for (int length = 1; length <= 16; ++length, code *= 2) {
        for (int i = 0; i < counts[static_cast<std::size_t>(length)]; ++i) {
            codes.push_back({code++, length, symbols[codes.size()]});
        }
    }
    return codes;
}

// Symbol and length of what the window begins with. What no code begins with is symbol 0: by the
// length of symbol 0's code within eight bits, else by as many bits as codes share with it and
// one.
std::pair<int, int> Search(const std::vector<Code>& codes, std::uint32_t window) {
    const auto lengthOf = [&](int symbol) {
        int length = 0;
        for (const Code& code : codes) length = code.symbol == symbol ? code.length : length;
        return length;
    };
    int shared = 0;
    for (const Code& code : codes) {
        if (window >> (16 - code.length) == code.code) {
            return {code.symbol, code.length <= 8 ? lengthOf(code.symbol) : code.length};
        }
        int same = 0;
        while (same < code.length &&
               ((window << (same + 1)) >> 16 & 1) == (code.code << (same + 1) >> code.length & 1)) {
            ++same;
        }
        if (code.length > 8) shared = std::max(shared, same);
    }
    return shared < 8 ? std::pair{0, lengthOf(0)} : std::pair{0, shared + 1};
}

// A bit reader over one window.
struct WindowReader {
    std::uint32_t window;
    int consumed = 0;
    std::uint32_t Peek16() const { return window; }
    void Consume(int count) { consumed += count; }
};

void CheckTable(const std::array<std::uint8_t, 17>& counts, const Bytes& symbols) {
    ASSERT_TRUE(HuffmanTable::FitsCodeSpace(counts.data()));
    const std::vector<Code> codes = AssignCodes(counts, symbols);
    const auto table = std::make_unique<HuffmanTable>();
    for (const auto use : {HuffmanTable::Use::Ac, HuffmanTable::Use::Dc}) {
        table->Build(counts.data(), symbols.data(), use);
        for (std::uint32_t window = 0; window < 65536;
             window += use == HuffmanTable::Use::Ac ? 1 : 5) {
            const auto [symbol, length] = Search(codes, window);
            WindowReader reader{window};
            ASSERT_EQ(table->DecodeSymbol(reader), symbol) << window;
            ASSERT_EQ(reader.consumed, length) << window;
            const auto direct = table->LookUp(window >> (16 - HuffmanTable::kDirectBits));
            if (direct.IsSymbol()) {
                ASSERT_EQ(direct.Value(), symbol) << window;
                ASSERT_EQ(direct.Bits(), length) << window;
            } else if (direct.IsCoefficient()) {
                const bool dc = use == HuffmanTable::Use::Dc;
                const int size = dc ? symbol : symbol & 15;
                const std::uint32_t bits = window << length >> (16 - size) & ((1U << size) - 1);
                ASSERT_EQ(direct.Bits(), length + size) << window;
                ASSERT_EQ(direct.Run(), dc ? 0 : symbol >> 4) << window;
                ASSERT_EQ(direct.Value(), size == 0 ? 0 : ExtendCoefficient(bits, size)) << window;
            }
        }
    }
}

TEST(HuffmanTableTest, TablesOfEveryShape) {
    std::mt19937 generator(3);
    const auto random = [&](unsigned limit) {
        return static_cast<std::uint32_t>(generator() % limit);
    };
    for (int round = 0; round < 12; ++round) {
        std::array<std::uint8_t, 17> counts{};
        std::uint32_t room = 65536;
        int total = 0;
        for (std::size_t length = 2; length <= 16; ++length) {
            const std::uint32_t fit = room >> (16 - length);
            const std::uint32_t wish = length < 6 ? random(3) : random(20);
            const auto count = std::min({fit, wish, static_cast<std::uint32_t>(255 - total)});
            counts[length] = static_cast<std::uint8_t>(count);
            room -= count << (16 - length);
            total += static_cast<int>(count);
        }
        Bytes symbols;
        // Some tables lack symbol 0, some have symbols twice.
        for (int i = 0; i < total; ++i) {
            symbols.push_back(static_cast<std::uint8_t>(round % 3 == 0 ? i
                                                        : round % 3 == 1
                                                            ? i + 1
                                                            : static_cast<int>(random(40))));
        }
        SCOPED_TRACE(round);
        CheckTable(counts, symbols);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(HuffmanTableTest, LargestTreeFits) {
    // A full subtree of 254 codes, and one long code alone in the next.
    std::array<std::uint8_t, 17> counts{};
    counts[15] = 2;
    counts[16] = 253;
    Bytes symbols;
    for (int i = 0; i < 255; ++i) symbols.push_back(static_cast<std::uint8_t>(255 - i));
    CheckTable(counts, symbols);
    CheckTable({}, {});
}

TEST(HuffmanTableTest, CodeSpaceIsChecked) {
    EXPECT_TRUE(HuffmanTable::FitsCodeSpace(std::array<std::uint8_t, 17>{0, 2}.data()));
    EXPECT_TRUE(HuffmanTable::FitsCodeSpace(std::array<std::uint8_t, 17>{0, 1, 2}.data()));
    EXPECT_FALSE(HuffmanTable::FitsCodeSpace(std::array<std::uint8_t, 17>{0, 3}.data()));
    EXPECT_FALSE(HuffmanTable::FitsCodeSpace(std::array<std::uint8_t, 17>{0, 1, 2, 1}.data()));
}

}  // namespace
}  // namespace marvolen::test
