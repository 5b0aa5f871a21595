#include "record/marked_file.h"

namespace marvolen {

void MarkedFile::Close() {
    watchOn = false;
    LimitedFile::Close();
}

bool MarkedFile::Write(const void* buf, std::uint32_t n, std::uint32_t* put) {
    if (watchOn) {
        const std::uint64_t pos = Tell();
        // Only a mark that moves forward is looked at again, so this ends whatever OnMark does.
        std::uint64_t previous = 0;
        bool first = true;
        writeRefused = false;
        while (pos <= mark && pos + n > mark && (first || mark > previous)) {
            previous = mark;
            first = false;
            OnMark();
            if (!writeRefused) continue;
            if (put != nullptr) *put = 0;
            return false;
        }
    }
    return LimitedFile::Write(buf, n, put);
}

void MarkedFile::OnMark() {}

}  // namespace marvolen
