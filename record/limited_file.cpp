#include "record/limited_file.h"

namespace marvolen {

void LimitedFile::Close() {
    limitOn = false;
    BasicFile::Close();
}

bool LimitedFile::Write(const void* buf, std::uint32_t n, std::uint32_t* put) {
    bool clipped = false;
    if (limitOn) {
        const std::uint64_t pos = Tell();
        if (pos + n > maxSize) {
            n = pos < maxSize ? static_cast<std::uint32_t>(maxSize - pos) : 0;
            clipped = true;
        }
    }
    const bool written = BasicFile::Write(buf, n, put);
    if (clipped) OnLimit();
    return written;
}

bool LimitedFile::SetMaxSize(std::uint64_t size) {
    if (limitOn) return false;
    maxSize = size;
    return true;
}

std::uint64_t LimitedFile::GetMaxSize() {
    return maxSize;
}

bool LimitedFile::SetLimit(bool flag) {
    limitOn = flag;
    return true;
}

void LimitedFile::OnLimit() {}

}  // namespace marvolen
