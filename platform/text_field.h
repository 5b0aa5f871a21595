#pragma once

// Fixed-size text fields of binary records: a NUL-terminated text in a buffer of known size. Texts
// are UTF-8.

#include <cstddef>
#include <span>
#include <string_view>

namespace marvolen {

// The field's text: the bytes before the first NUL, at most one byte less than the field holds, so
// that a field without a NUL is read without leaving it. The view lives as long as the field.
std::string_view FieldText(std::span<const char> field);

// Stores text and its NUL. What doesn't fit is cut before the last byte, never inside a character;
// a NUL within text ends it. Bytes behind the stored NUL keep their values.
void SetFieldText(std::span<char> field, std::string_view text);

// The longest start of text that is at most maxBytes long and doesn't end inside a UTF-8 character.
// Bytes that aren't UTF-8 are cut anywhere.
std::string_view CutText(std::string_view text, std::size_t maxBytes);

}  // namespace marvolen
