#include "tools/record_file/plain_text.h"

namespace marvolen {

std::string CountedText(std::uint64_t number, const char* what) {
    return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
}

const char* OpenErrorText(FileOpenError error) {
    switch (error) {
        case FileOpenError::kMissing:
            return "no such file";
        case FileOpenError::kInUse:
            return "in use by a recorder or another program";
        case FileOpenError::kNotAFile:
            return "not a file";
        default:
            return "can't be opened";
    }
}

}  // namespace marvolen
