#include "net/stamp_text.h"

#include "net/hex_digit.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace marvolen {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

// Takes one number off the front of text, white space before it included.
std::optional<std::uint32_t> TakeNumber(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);

    std::uint32_t number = 0;
    std::size_t digits = 0;
    for (; digits < text.size(); ++digits) {
        const int digit = HexDigit(text[digits]);
        if (digit < 0) break;
        number = number << 4 | static_cast<std::uint32_t>(digit);
    }
    if (digits == 0) return std::nullopt;
    text.remove_prefix(digits);
    return negative ? 0 - number : number;
}

std::uint16_t Bits(std::uint32_t number, int shift, std::uint32_t mask) {
    return static_cast<std::uint16_t>(number >> shift & mask);
}

}  // namespace

SYSTEMTIME ParseStamp(std::string_view text) {
    std::array<std::uint32_t, 3> numbers{};
    for (std::uint32_t& number : numbers) {
        const auto read = TakeNumber(text);
        if (!read) break;
        number = *read;
    }
    SYSTEMTIME time{};
    time.year = Bits(numbers[0], 16, 0xFFFF);
    time.month = Bits(numbers[0], 8, 0xFF);
    time.day = Bits(numbers[0], 0, 0xFF);
    time.hour = Bits(numbers[1], 16, 0xFF);
    time.minute = Bits(numbers[1], 8, 0xFF);
    time.second = Bits(numbers[1], 0, 0xFF);
    time.milliseconds = Bits(numbers[2] * 10, 0, 0xFFFF);
    return time;
}

}  // namespace marvolen
