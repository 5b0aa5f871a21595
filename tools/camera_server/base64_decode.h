#pragma once

// The decoding half of base64 (RFC 4648, section 4), for the credentials of requests.

#include <optional>
#include <string>
#include <string_view>

namespace marvolen {

// Nothing when the text isn't base64 with its padding, or has anything around it.
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace marvolen
