#include "tools/camera_server/base64_decode.h"

#include <cstdint>

namespace marvolen {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;

    std::string bytes;
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t digit = 0;
        if (i < text.size() - padding) {
            digit = kAlphabet.find(text[i]);
            if (digit == std::string_view::npos) return std::nullopt;
        }
        group = group << 6 | static_cast<std::uint32_t>(digit);
        if (i % 4 != 3) continue;
        bytes += static_cast<char>(group >> 16 & 0xFF);
        bytes += static_cast<char>(group >> 8 & 0xFF);
        bytes += static_cast<char>(group & 0xFF);
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}

}  // namespace marvolen
