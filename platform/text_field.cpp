#include "platform/text_field.h"

#include <algorithm>

namespace marvolen {
namespace {

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string_view FieldText(std::span<const char> field) {
    if (field.empty()) return {};
    const auto last = field.end() - 1;
    const auto end = std::find(field.begin(), last, '\0');
    return {field.data(), static_cast<std::size_t>(end - field.begin())};
}

void SetFieldText(std::span<char> field, std::string_view text) {
    if (field.empty()) return;
    text = CutText(text.substr(0, text.find('\0')), field.size() - 1);
    *std::copy(text.begin(), text.end(), field.begin()) = '\0';
}

std::string_view CutText(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    std::size_t end = maxBytes;
    // A character has at most three continuation bytes; a longer run isn't UTF-8.
    for (int back = 0; back < 3 && end > 0 && IsContinuation(text[end]); ++back) --end;
    return text.substr(0, IsContinuation(text[end]) ? maxBytes : end);
}

}  // namespace marvolen
