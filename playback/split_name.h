#pragma once

// Names of the further files of an export that takes more than one.

#include <cstdint>
#include <string>
#include <string_view>

namespace marvolen {

// "C:\chl01.avi" and 1 give "C:\chl01-01.avi": the number stands before the last dot of the name,
// which may be in any folder, with "\" or "/" before it. A name without a dot gets the number and a
// dot. Numbers have at least two digits.
std::string SplitName(std::string_view baseName, std::uint32_t sequence);

}  // namespace marvolen
