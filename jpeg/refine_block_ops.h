#pragma once

#include "jpeg/refine_block.h"

#include <cstdint>

// The refinement of a block, for implementations that differ in how they find the n-th bit of a
// mask and spread bits over one. Everything is static to the file that includes this.
//
// The bits of a block tell, symbol by symbol, which coefficients grow and where new ones stand.
// Both are gathered as masks first: the number of corrections that a symbol brings is what no
// processor can foresee, so there is one loop over them a block instead of one a symbol.

namespace marvolen {
namespace {

// What the block's bits have told so far.
struct Refined {
    std::uint64_t grown = 0;
    std::uint64_t added = 0;
    std::uint64_t addedNegative = 0;
};

inline std::uint64_t ReverseBits(std::uint64_t x) {
    x = __builtin_bswap64(x);
    x = (x >> 4 & 0x0F0F0F0F0F0F0F0F) | (x & 0x0F0F0F0F0F0F0F0F) << 4;
    x = (x >> 2 & 0x3333333333333333) | (x & 0x3333333333333333) << 2;
    return (x >> 1 & 0x5555555555555555) | (x & 0x5555555555555555) << 1;
}

// Reads one bit for each of the places, the lowest first, and returns the places whose bit is 1.
// 32 bits must be there.
template <class Ops>
inline std::uint64_t ReadCorrections(BitCursor& in, std::uint64_t places) {
    std::uint64_t grown = 0;
    int count = __builtin_popcountll(places);
    while (count > 32) {
        const std::uint64_t part = Ops::Spread(0xFFFFFFFF, places);
        grown |= Ops::Spread(ReverseBits(in.bits), part);
        in.Drop(32);
        in.Refill();
        places &= ~part;
        count -= 32;
    }
    grown |= Ops::Spread(ReverseBits(in.bits), places);
    in.Drop(static_cast<std::uint32_t>(count));
    return grown;
}

inline void Apply(const Refined& refined, const AcRefinement& scan, const CoefficientBlock& block) {
    for (std::uint64_t left = refined.grown | refined.added; left != 0; left &= left - 1) {
        const int k = __builtin_ctzll(left);
        std::int16_t& coefficient = block.coefficients[scan.naturalOrder[k]];
        // Either has its sign from one of the two: a coefficient that is added was 0.
        const int negative = static_cast<int>(refined.addedNegative >> k & 1) | (coefficient < 0);
        coefficient = static_cast<std::int16_t>(coefficient + (scan.step ^ -negative) + negative);
    }
    *block.nonZero |= refined.added;
}

// A symbol that isn't a coefficient of one bit. False when it can't be.
inline bool ReadOtherSymbol(const HuffmanTable& table, HuffmanTable::Direct direct, BitCursor& in,
                            int& run, int& value, std::uint32_t& endOfBandRun) {
    if (direct.IsCoefficient()) return false;
    HuffmanTable::Decoded decoded = {direct.Value(), direct.Bits()};
    if (!direct.IsSymbol()) decoded = table.DecodeWindow(in.Peek16());
    in.Consume(decoded.length);
    const int size = decoded.symbol & 15;
    run = decoded.symbol >> 4;
    value = 0;
    if (size == 1) value = in.ReadBits(1) == 1 ? 1 : -1;
    if (size == 0 && run != kLongRun) {
        endOfBandRun = 1U << run;
        if (run > 0) endOfBandRun += in.ReadBits(run);
    }
    return size <= 1;
}

template <class Ops>
bool RefineBlock(const AcRefinement& scan, BitCursor& cursor, std::uint32_t& endOfBandRun,
                 const CoefficientBlock& block) {
    const std::uint64_t before = *block.nonZero;
    Refined refined;
    BitCursor in = cursor;
    int k = scan.first;
    while (endOfBandRun == 0 && k <= scan.last) {
        in.Refill();
        const HuffmanTable::Direct direct = scan.direct[in.Peek(HuffmanTable::kDirectBits)];
        int run = direct.Run();
        int value = direct.Value();
        if (direct.IsCoefficient() && (value == 1 || value == -1)) [[likely]] {
            in.Consume(direct.Bits());
        } else {
            BitCursor moved = in;
            if (!ReadOtherSymbol(*scan.table, direct, moved, run, value, endOfBandRun)) {
                return false;
            }
            in = moved;
            if (endOfBandRun > 0) break;
        }
        // The place is the zero coefficient that follows run other ones.
        const int place = Ops::NthBit(~before & BitsBetween(k, scan.last), run, scan.last + 1);
        refined.grown |= ReadCorrections<Ops>(in, before & BitsBetween(k, place - 1));
        if (place > scan.last) return false;
        refined.added |= static_cast<std::uint64_t>(value != 0) << place;
        refined.addedNegative |= static_cast<std::uint64_t>(value < 0) << place;
        k = place + 1;
    }
    if (endOfBandRun > 0) {
        in.Refill();
        refined.grown |= ReadCorrections<Ops>(in, before & BitsBetween(k, scan.last));
        --endOfBandRun;
    }
    Apply(refined, scan, block);
    cursor = in;
    return true;
}

}  // namespace
}  // namespace marvolen
