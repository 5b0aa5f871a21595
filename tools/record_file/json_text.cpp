#include "tools/record_file/json_text.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace marvolen {
namespace {

unsigned ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// Length of the well-formed UTF-8 sequence at the start of a text that isn't empty, 0 when there is
// none (Unicode 15.0, table 3-7).
std::size_t SequenceLength(std::string_view text) {
    const unsigned lead = ByteAt(text, 0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length) return 0;
    const unsigned second = ByteAt(text, 1);
    const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (second < lowest || second > highest) return 0;
    for (std::size_t k = 2; k < length; ++k) {
        if ((ByteAt(text, k) & 0xC0) != 0x80) return 0;
    }
    return length;
}

}  // namespace

std::string JsonText(std::string_view text) {
    std::string json = "\"";
    while (!text.empty()) {
        const std::size_t length = SequenceLength(text);
        if (length == 0) {
            json += "\\ufffd";
            text.remove_prefix(1);
            continue;
        }
        const unsigned byte = ByteAt(text, 0);
        if (byte == '"' || byte == '\\') {
            json += '\\';
            json += text[0];
        } else if (byte < 0x20) {
            std::array<char, 8> escape;
            std::snprintf(escape.data(), escape.size(), "\\u%04x", byte);
            json += escape.data();
        } else {
            json += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return json + '"';
}

}  // namespace marvolen
