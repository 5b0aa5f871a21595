#include "tools/camera_server/base64_decode.h"

#include <cstdint>

namespace marvolen {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding) text.remove_suffix(1);
    std::string bytes;
    std::uint32_t pending = 0;
    int bits = 0;
    for (const char letter : text) {
        const std::size_t digit = kAlphabet.find(letter);
        if (digit == std::string_view::npos) return std::nullopt;
        pending = pending << 6 | static_cast<std::uint32_t>(digit);
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes += static_cast<char>(pending >> bits & 0xFF);
    }
    return bytes;
}

}  // namespace marvolen
