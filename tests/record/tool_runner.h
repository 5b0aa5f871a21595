#pragma once

// record_file under a fixture: what it says and its exit status.

#include "tools/record_file/record_commands.h"

#include <sstream>
#include <string>
#include <vector>

namespace marvolen::test {

class ToolRunner {
protected:
    int RunTool(const std::vector<std::string>& arguments) {
        std::ostringstream results, complaints;
        const int status = RunRecordTool(arguments, results, complaints);
        out = results.str();
        err = complaints.str();
        return status;
    }
    std::string out;  // of the latest run
    std::string err;
};

}  // namespace marvolen::test
