#pragma once

#include <string>
#include <string_view>

namespace marvolen {

// A text as a JSON string, quotes included (RFC 8259, 7). What isn't UTF-8 becomes U+FFFD, a byte
// each.
std::string JsonText(std::string_view text);

}  // namespace marvolen
