#include "jpeg/huffman_table.h"

#include <algorithm>

namespace marvolen {

bool HuffmanTable::FitsCodeSpace(const std::uint8_t* counts) {
    std::uint32_t used = 0;
    for (int length = 1; length <= 16; ++length) {
        used += static_cast<std::uint32_t>(counts[length]) << (16 - length);
    }
    return used <= 1U << 16;
}

void HuffmanTable::Build(const std::uint8_t* counts, const std::uint8_t* symbols, Use use) {
    lookahead.fill(0);
    codeLength.fill(0);
    tree.fill(0);
    std::int32_t freeNode = -1;
    std::uint32_t code = 0;
    for (int length = 1; length <= 16; ++length, code <<= 1) {
        for (int i = 0; i < counts[length]; ++i, ++code) {
            const int symbol = *symbols++;
            codeLength[static_cast<std::size_t>(symbol)] = static_cast<std::uint8_t>(length);
            if (length <= 8) {
                const int spare = 8 - length;
                std::fill_n(lookahead.begin() + (code << spare), 1 << spare, symbol);
            } else {
                AddLongCode(code, length, symbol, freeNode);
            }
        }
    }
    if (use == Use::AcPairs) {
        MakePairs();
        return;
    }
    for (std::uint32_t bits = 0; bits < direct.size(); ++bits) {
        direct[bits] = MakeDirect(bits, use);
    }
}

void HuffmanTable::AddLongCode(std::uint32_t code, int length, int symbol, std::int32_t& freeNode) {
    std::int32_t* entry = &lookahead[code >> (length - 8)];
    for (int bitsLeft = length - 8; bitsLeft > 0; --bitsLeft) {
        if (*entry == 0) {
            *entry = freeNode;
            freeNode -= 2;
        }
        entry = &tree[Branch(*entry, code >> (bitsLeft - 1) & 1)];
    }
    *entry = symbol;
}

HuffmanTable::Direct HuffmanTable::MakeDirect(std::uint32_t bits, Use use) const {
    // The bits beyond kDirectBits are unknown: whatever depends on them is left to the caller.
    const std::uint32_t window = bits << (16 - kDirectBits);
    const Decoded decoded = DecodeWindow(window);
    if (!IsKnown(decoded, window, kDirectBits)) return {};
    const int size = use == Use::Dc ? decoded.symbol : decoded.symbol & 15;
    const int run = use == Use::Dc ? 0 : decoded.symbol >> 4;
    const int total = decoded.length + size;
    if (total > kDirectBits || (size == 0 && use != Use::Dc)) {
        return Direct::Symbol(decoded.length, decoded.symbol);
    }
    if (size == 0) return Direct::Coefficient(total, 0, 0);
    const std::uint32_t valueBits = bits >> (kDirectBits - total) & ((1U << size) - 1);
    return Direct::Coefficient(total, run, ExtendCoefficient(valueBits, size));
}

HuffmanTable::Decoded HuffmanTable::DecodeWindow(std::uint32_t window) const {
    std::int32_t entry = lookahead[window >> 8];
    if (entry >= 0) return {entry, codeLength[static_cast<std::size_t>(entry)]};
    int length = 8;
    do {
        ++length;
        entry = tree[Branch(entry, window >> (16 - length) & 1)];
    } while (entry < 0);
    return {entry, length};
}

HuffmanTable::Pair HuffmanTable::MakeSingle(std::uint32_t bits) const {
    const std::uint32_t window = bits << (16 - kPairBits);
    const auto [symbol, length] = DecodeWindow(window);
    if (!IsKnown({symbol, length}, window, kPairBits)) return Pair::Long(Pair::kUnknown, 0);
    const int size = symbol & 15;
    const int total = length + size;
    if (total > kPairBits) return Pair::Long(length, symbol);
    if (symbol == kZeroRun) return Pair::One(total, 16, 0);
    if (size == 0) return Pair::One(total, Pair::kEnd, 0);
    const std::uint32_t valueBits = bits >> (kPairBits - total) & ((1U << size) - 1);
    return Pair::One(total, (symbol >> 4) + 1, ExtendCoefficient(valueBits, size));
}

void HuffmanTable::PrefetchPairs() const {
    constexpr std::size_t kPairsALine = 64 / sizeof(Pair);
    for (std::size_t i = 0; i < pairs.size(); i += kPairsALine) __builtin_prefetch(&pairs[i]);
}

void HuffmanTable::MakePairs() {
    constexpr std::uint32_t kMask = (1U << kPairBits) - 1;
    std::array<Pair, 1 << kPairBits> singles;
    for (std::uint32_t bits = 0; bits <= kMask; ++bits) singles[bits] = MakeSingle(bits);
    for (std::uint32_t bits = 0; bits <= kMask; ++bits) {
        const Pair first = singles[bits];
        // The second one's unknown bits are taken as 0: it counts where none of them matters.
        const Pair second = singles[bits << first.Bits() & kMask];
        const bool both = first.Advance() < Pair::kEnd && second.Advance() < Pair::kLong &&
                          first.Bits() + second.Bits() <= kPairBits;
        pairs[bits] = both ? first.Then(second) : first;
    }
}

}  // namespace marvolen
