#pragma once

// record_file export: writes records to AVI files, with the renderer of the program's dialog.

#include <iosfwd>
#include <string>
#include <vector>

namespace marvolen {

// Whether to draw a bar that shows how far a long command is.
enum class ProgressBar { kHidden, kDrawn };

// Runs the command with the arguments after its name and returns the program's exit status
// (record_commands.h). The files written are listed to out, a line each; err gets what went wrong
// and the bar. SIGINT, SIGTERM and SIGHUP end it after the picture being written, with complete
// files.
int RunExportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err, ProgressBar bar);

}  // namespace marvolen
