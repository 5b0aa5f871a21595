#include "tools/record_file/record_commands.h"

#include <iostream>

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    const int status = marvolen::RunRecordTool({argv + 1, argv + argc}, std::cout, std::cerr);
    // A list that its reader didn't get, on a full disk say, is no success.
    return std::cout.flush() ? status : marvolen::kRecordToolFailed;
}
