#include "jpeg/jpeg_input.h"

#include "jpeg/jpeg_error.h"

#include <algorithm>
#include <limits>

namespace marvolen {

void JpegInput::Attach(JpegSource* newSource) {
    source = newSource;
    whole = source->WholeData();
    if (whole.size() > std::numeric_limits<std::int32_t>::max()) whole = {};
    if (!whole.empty()) Seek(0);
}

void JpegInput::Seek(std::uint64_t position) {
    const std::uint64_t real = std::min<std::uint64_t>(position, whole.size());
    readPointer = whole.data() + real;
    bytesAvailable = static_cast<std::int32_t>(whole.size() - real);
    inventedBytes = position - real;
}

void JpegInput::Fill() {
    // Everything was there from the start, and can be unread where it stands.
    if (!whole.empty()) return;
    // What was read last moves into the push-back area, so that it can still be unread.
    std::memmove(BufferStart() - kMaxUnread, readPointer - kMaxUnread, kMaxUnread);
    readPointer = BufferStart();
    bytesAvailable = 0;
    if (endOfInput) return;
    int gathered = 0;
    while (gathered < kBufferBytes && !endOfInput) {
        const int wanted = kBufferBytes - gathered;
        const int count = source->Read(BufferStart() + gathered, wanted, &endOfInput);
        if (count < 0 || count > wanted) Fail(kJpegErrorRead);
        gathered += count;
    }
    // Nothing reads this tail, for every read is held against bytesAvailable. It is a guard: what
    // would look beyond the data finds the end of the image there, not what an earlier fill left.
    for (int i = 0; i < kEdgeBytes; i += 2) {
        BufferStart()[gathered + i] = 0xFF;
        BufferStart()[gathered + i + 1] = 0xD9;
    }
    bytesAvailable = gathered;
}

std::uint8_t JpegInput::ReadRawSlow() {
    Fill();
    if (bytesAvailable == 0) return inventedBytes++ % 2 == 0 ? 0xFF : 0xD9;
    --bytesAvailable;
    return *readPointer++;
}

void JpegInput::Unread(int count) {
    const int invented = static_cast<int>(std::min<std::uint64_t>(inventedBytes, kMaxUnread));
    const int inventedBack = std::min(count, invented);
    inventedBytes -= static_cast<std::uint64_t>(inventedBack);
    readPointer -= count - inventedBack;
    bytesAvailable += count - inventedBack;
}

std::uint8_t JpegInput::ReadEntropy() {
    const std::uint8_t byte = ReadRaw();
    const bool invented = inventedBytes != 0;
    if (byte != 0xFF && !invented) [[likely]]
        return byte;
    // Anything but a stuffed zero makes a real FF a marker, which stays unread. So does one at the
    // very end of the data: an invented byte is never 0.
    const bool isMarker = !invented && ReadRaw() != 0;
    if (isMarker) Unread(2);
    if (invented || isMarker) ++fillerBytes;
    return byte;
}

std::uint64_t JpegInput::ReadEntropy48Slow() {
    std::uint64_t six = 0;
    for (int i = 0; i < 6; ++i) six = six << 8 | ReadEntropy();
    return six;
}

}  // namespace marvolen
