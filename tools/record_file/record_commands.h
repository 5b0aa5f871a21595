#pragma once

// The record_file program: looks into record files without ever changing them.

#include "tools/record_file/export_command.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace marvolen {

// Exit statuses of the program.
inline constexpr int kRecordToolDone = 0;     // done; for verify: the file is sound
inline constexpr int kRecordToolDamaged = 1;  // damaged, no record file, or no such record
inline constexpr int kRecordToolFailed = 2;   // wrong usage, or a file that can't be had

// Runs the program with the arguments after its name and returns its exit status. Results go to
// out; what went wrong, and the bar, to err.
int RunRecordTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                  ProgressBar bar = ProgressBar::kHidden);

}  // namespace marvolen
