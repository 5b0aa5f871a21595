#include "jpeg/entropy_segment.h"

#include <algorithm>
#include <cstring>

namespace marvolen {

void EntropySegment::Load(std::span<const std::uint8_t> stream, std::uint64_t position,
                          std::uint8_t* buffer) {
    beginning = position;
    data = stream.subspan(std::min<std::uint64_t>(position, stream.size()));
    bytes = buffer;
    endsInMarker = false;
    const std::uint8_t* from = data.data();
    const std::uint8_t* const end = from + data.size();
    std::uint8_t* to = buffer;
    while (from < end && !endsInMarker) {
        const auto left = static_cast<std::size_t>(end - from);
        const auto* stop = static_cast<const std::uint8_t*>(std::memchr(from, 0xFF, left));
        if (stop == nullptr) stop = end;
        const auto plain = static_cast<std::size_t>(stop - from);
        std::memcpy(to, from, plain);
        to += plain;
        from = stop;
        if (from == end) break;
        // A real FF as the last byte stays unread like a marker.
        endsInMarker = end - from < 2 || from[1] != 0;
        if (!endsInMarker) {
            *to++ = 0xFF;
            from += 2;
        }
    }
    count = static_cast<std::size_t>(to - buffer);
    const auto read = static_cast<std::uint64_t>(from - data.data());
    dataEnd = beginning + read;
    std::memset(to, 0xFF, kFillerBytes);
    if (endsInMarker) return;
    // Behind the end FF stands at even distances from it.
    for (std::size_t i = 1 - (dataEnd - stream.size()) % 2; i < kFillerBytes; i += 2) to[i] = 0xD9;
}

std::uint64_t EntropySegment::PositionBehind(std::uint64_t taken) const {
    if (taken >= count) return endsInMarker ? dataEnd : dataEnd + (taken - count);
    // Rare: only damaged data leaves some of a segment unread.
    std::size_t read = 0;
    for (std::uint64_t i = 0; i < taken; ++i) read += data[read] == 0xFF ? 2 : 1;
    return beginning + read;
}

}  // namespace marvolen
