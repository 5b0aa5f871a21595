#pragma once

// Texts that several commands print.

#include "platform/file_handle.h"

#include <cstdint>
#include <string>

namespace marvolen {

// "1 record", "2 records".
std::string CountedText(std::uint64_t number, const char* what);

// Why a file couldn't be opened.
const char* OpenErrorText(FileOpenError error);

}  // namespace marvolen
