#pragma once

#include "platform/system_time.h"

#include <string_view>

namespace marvolen {

// The time that the text behind "Stamp:" tells: four hexadecimal numbers separated by white space,
//
//   1  0xYYYYMMDD   date
//   2  0x00HHMMSS   time of day
//   3  hundredths of a second
//   4  not used
//
// read as scanf reads "%x %x %x %x" (a sign and "0x" are allowed, digits beyond 32 bits push the
// first ones out). Reading ends at the first number that can't be read; it and those behind it
// count as 0. Nothing is range-checked. The day of week is 0.
SYSTEMTIME ParseStamp(std::string_view text);

}  // namespace marvolen
