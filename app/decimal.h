#pragma once

// Decimal numbers at the start of texts.

#include <cstdint>
#include <string_view>

namespace marvolen {

// '0' to '9', in every locale.
constexpr bool IsDecimalDigit(char c) {
    return c >= '0' && c <= '9';
}

// The value of the digits text begins with, 0 without any. Values too large for 64 bits stay at the
// largest.
std::uint64_t LeadingDecimal(std::string_view text);

}  // namespace marvolen
