#include "jpeg/memory_jpeg_source.h"

#include <algorithm>
#include <cstring>

namespace marvolen {

int MemoryJpegSource::Read(void* destination, int maxCount, bool* endOfData) {
    const std::ptrdiff_t count = std::min<std::ptrdiff_t>(maxCount, end - current);
    if (count > 0) {
        std::memcpy(destination, current, static_cast<std::size_t>(count));
        current += count;
    }
    if (current == end) *endOfData = true;
    return static_cast<int>(count);
}

}  // namespace marvolen
