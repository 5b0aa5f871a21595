#include "net/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {
namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
constexpr std::size_t kPad = 64;  // index of "="
static_assert(kDigits.size() == kPad + 1 && kDigits[kPad] == '=');

}  // namespace

void EncodeBase64(std::string_view input, std::string& output) {
    output.reserve(output.size() + (input.size() + 2) / 3 * 4);
    for (std::size_t group = 0; group < input.size(); group += 3) {
        std::uint32_t value = 0;
        std::size_t missing = 0;
        for (std::size_t i = group; i < group + 3; ++i) {
            value <<= 8;
            if (i < input.size()) {
                value += static_cast<unsigned char>(input[i]);
            } else {
                ++missing;
            }
        }
        const std::array<std::size_t, 4> indices{
            value >> 18 & 63,
            value >> 12 & 63,
            missing > 1 ? kPad : value >> 6 & 63,
            missing > 0 ? kPad : value & 63,
        };
        for (const std::size_t index : indices) output.push_back(kDigits[index]);
    }
}

}  // namespace marvolen
