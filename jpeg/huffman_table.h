#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

// The coefficient value of size (1..15) bits (ITU-T T.81, F.2.2.1, EXTEND).
constexpr int ExtendCoefficient(std::uint32_t bits, int size) {
    const int value = static_cast<int>(bits);
    return value < 1 << (size - 1) ? value - (1 << size) + 1 : value;
}

// The AC symbol for sixteen zeros.
inline constexpr int kZeroRun = 0xF0;

// A Huffman decoding table (ITU-T T.81, Annex C and F.2.2.3).
//
// lookahead, codeLength and tree define what every bit sequence means, also one that no code
// begins: such a prefix is symbol 0, with the length of symbol 0's code (0 if it has none).
// direct says the same of the next kDirectBits bits in one step, together with the coefficient
// that follows where it still fits. An all-zero object is a valid empty table.
class HuffmanTable {
public:
    // What a symbol means: a size (DC), or a run of zeros in the high and a size in the low
    // nibble; and which table there is beside the codes' own, the direct one or that of pairs.
    // Pairs are for sequential scans, where a size of 0 has no other meaning.
    enum class Use { Dc, Ac, AcPairs };

    static constexpr int kDirectBits = 10;

    // An entry of the direct table.
    class Direct {
    public:
        // A whole coefficient: skip Run zeros, then Value.
        static constexpr Direct Coefficient(int bits, int run, int value) {
            return Direct(value * 0x10000 + (run << 8 | kIsCoefficient | bits));
        }
        // A symbol without the bits that follow it.
        static constexpr Direct Symbol(int bits, int symbol) {
            return Direct(symbol * 0x10000 + (kIsSymbol | bits));
        }
        constexpr Direct() = default;

        // Both false: the code is longer than the direct table sees.
        [[gnu::always_inline]] constexpr bool IsCoefficient() const {
            return (packed & kIsCoefficient) != 0;
        }
        [[gnu::always_inline]] constexpr bool IsSymbol() const { return (packed & kIsSymbol) != 0; }
        // Bits to consume, 0..16.
        [[gnu::always_inline]] constexpr int Bits() const { return packed & 0x1F; }
        [[gnu::always_inline]] constexpr int Run() const { return packed >> 8 & 0xFF; }
        // The coefficient or the symbol.
        [[gnu::always_inline]] constexpr int Value() const { return packed >> 16; }

    private:
        static constexpr std::int32_t kIsCoefficient = 0x20;
        static constexpr std::int32_t kIsSymbol = 0x40;

        explicit constexpr Direct(std::int32_t value) : packed(value) {}
        std::int32_t packed = 0;
    };

    // Up to two AC symbols with their coefficients, as one look at the next kPairBits bits gives
    // them; the end of a block and sixteen zeros stand as coefficients of value 0. Positions are
    // zigzag ones, counted by Advance: from one coefficient's to the next one's.
    class Pair {
    public:
        // Advances beyond any position: the block ends here; or, from kLong on, the entry is no
        // coefficient but a symbol, whose bits or value bits go beyond kPairBits.
        static constexpr int kEnd = 128;
        static constexpr int kLong = 192;

        constexpr Pair() = default;
        static constexpr Pair One(int bits, int advance, int value) {
            return Pair(bits, bits, advance, 0, value, value);
        }
        // symbol is meaningless where no code is known to begin: bits is then kUnknown.
        static constexpr int kUnknown = 255;
        static constexpr Pair Long(int bits, int symbol) {
            return Pair(0, bits, kLong, 0, symbol, 0);
        }
        constexpr Pair Then(const Pair& second) const {
            return Pair(Bits() + second.Bits(), Bits(), Advance(), second.Advance(), Value(),
                        second.Value());
        }

        // Of both: what to consume. 0 for a long one.
        constexpr int Bits() const { return static_cast<int>(packed & 63); }
        constexpr int FirstBits() const { return static_cast<std::uint8_t>(packed >> 24); }
        constexpr int Advance() const { return static_cast<std::uint8_t>(packed >> 8); }
        constexpr int Value() const { return static_cast<std::int16_t>(packed >> 32); }
        // 0 and the first value again where there is no second one.
        constexpr int SecondAdvance() const { return static_cast<std::uint8_t>(packed >> 16); }
        constexpr int SecondValue() const { return static_cast<std::int16_t>(packed >> 48); }

    private:
        constexpr Pair(int bits, int firstBits, int advance, int secondAdvance, int value,
                       int secondValue)
            : packed(static_cast<std::uint64_t>(bits) | static_cast<std::uint64_t>(advance) << 8 |
                     static_cast<std::uint64_t>(secondAdvance) << 16 |
                     static_cast<std::uint64_t>(firstBits) << 24 |
                     static_cast<std::uint64_t>(static_cast<std::uint16_t>(value)) << 32 |
                     static_cast<std::uint64_t>(static_cast<std::uint16_t>(secondValue)) << 48) {}
        std::uint64_t packed = 0;
    };
    static constexpr int kPairBits = 11;

    // Is there room for all codes, with counts[1..16] codes of each length? (An all-ones code is
    // allowed.)
    static bool FitsCodeSpace(const std::uint8_t* counts);

    // Makes the table for a code that FitsCodeSpace: counts as above, at most 255 codes in
    // all, and their symbols in code order.
    void Build(const std::uint8_t* counts, const std::uint8_t* symbols, Use use);

    // What the next kDirectBits bits mean, for Dc and Ac.
    [[gnu::always_inline]] Direct LookUp(std::uint32_t bits) const { return direct[bits]; }

    // The same as an array.
    const Direct* DirectTable() const { return direct.data(); }

    // What the next kPairBits bits mean, for AcPairs.
    Pair LookUpPair(std::uint64_t bits) const { return pairs[bits]; }

    // Asks for the table of pairs to be brought to the processor. Tables lie idle from picture to
    // picture, and looks wait for each other, so they would wait for each line of it in turn.
    void PrefetchPairs() const;

    // Decodes and consumes one symbol (0..255).
    template <class BitReader>
    int DecodeSymbol(BitReader& reader) const {
        const Decoded decoded = DecodeWindow(reader.Peek16());
        reader.Consume(decoded.length);
        return decoded.symbol;
    }

    // The first symbol of 16 bits, and how many of them are its code.
    struct Decoded {
        int symbol;
        int length;
    };
    Decoded DecodeWindow(std::uint32_t window) const;

private:
    // A tree of 255 codes of up to 16 bits has at most 261 nodes below the lookahead: one fewer
    // than codes, and up to eight more on the edge behind the last code.
    static constexpr int kMaxNodes = 264;

    // Is the first symbol known, and how long its code is, from that many bits of the window?
    bool IsKnown(const Decoded& decoded, std::uint32_t window, int bits) const {
        return lookahead[window >> 8] >= 0 || decoded.length <= bits;
    }

    // Where a node keeps what follows for the next bit.
    static constexpr std::size_t Branch(std::int32_t node, std::uint32_t bit) {
        return static_cast<std::size_t>(-node) - bit;
    }

    void AddLongCode(std::uint32_t code, int length, int symbol, std::int32_t& freeNode);
    Direct MakeDirect(std::uint32_t bits, Use use) const;
    Pair MakeSingle(std::uint32_t bits) const;
    void MakePairs();

    // By the next 8 bits: a symbol, or (negative) the node from which a longer code goes on.
    std::array<std::int32_t, 256> lookahead;
    // By symbol: the length of its code; of its last one where a symbol has several.
    std::array<std::uint8_t, 256> codeLength;
    // By Branch: a symbol or a further node.
    std::array<std::int32_t, 2 * kMaxNodes> tree;
    std::array<Direct, 1 << kDirectBits> direct;
    std::array<Pair, 1 << kPairBits> pairs;
};

}  // namespace marvolen
