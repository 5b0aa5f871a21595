#include "tools/record_file/record_commands.h"

#include <csignal>
#include <iostream>
#include <unistd.h>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    // A file that may not grow any more is a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    using marvolen::ProgressBar;
    const ProgressBar bar = isatty(STDERR_FILENO) ? ProgressBar::kDrawn : ProgressBar::kHidden;
    const int status = marvolen::RunRecordTool({argv + 1, argv + argc}, std::cout, std::cerr, bar);
    // A list that its reader didn't get, on a full disk say, is no success.
    return std::cout.flush() ? status : marvolen::kRecordToolFailed;
}
