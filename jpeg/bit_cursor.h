#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace marvolen {

// Reads bits from memory, the highest bit of a byte first. The memory must go on for 8 bytes behind
// the last one that is read. Its operations are forced inline, so that files compiled for different
// instruction sets share none of them.
struct BitCursor {
    // Bits that are there after Refill.
    static constexpr int kRefilled = 56;

    const std::uint8_t* next = nullptr;  // the byte behind the last whole one in bits
    std::uint64_t bits = 0;              // the next bit is the highest
    std::uint32_t count = 0;             // how many are there, 0..63

    // Makes at least kRefilled bits be there. What bits holds below its count is part of the byte
    // at next already, so or-ing that again changes nothing: no branch, no mask.
    [[gnu::always_inline]] void Refill() {
        std::uint64_t word;
        std::memcpy(&word, next, sizeof word);
        if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
        bits |= word >> count;
        next += (63 - count) >> 3;
        count |= kRefilled;
    }

    // Consumes bits that are there.
    [[gnu::always_inline]] void Drop(std::uint32_t dropped) {
        bits <<= dropped;
        count -= dropped;
    }

    // The next size (1..32) bits, without consuming them.
    [[gnu::always_inline]] std::uint32_t Peek(int size) const {
        return static_cast<std::uint32_t>(bits >> (64 - size));
    }

    // As the other bit readers, for HuffmanTable::DecodeSymbol.
    [[gnu::always_inline]] std::uint32_t Peek16() const { return Peek(16); }
    [[gnu::always_inline]] void Consume(int consumed) {
        Drop(static_cast<std::uint32_t>(consumed));
    }
    [[gnu::always_inline]] std::uint32_t ReadBits(int size) {
        const std::uint32_t value = Peek(size);
        Consume(size);
        return value;
    }
};

}  // namespace marvolen
