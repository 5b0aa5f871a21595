#pragma once

#include <string>
#include <string_view>

namespace marvolen {

// Appends the base64 form of the input's bytes to output: RFC 4648, section 4, padded with "=", no
// line breaks. input must not be a part of output.
void EncodeBase64(std::string_view input, std::string& output);

}  // namespace marvolen
