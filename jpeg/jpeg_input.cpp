#include "jpeg/jpeg_input.h"

#include "jpeg/jpeg_error.h"

#include <algorithm>

namespace marvolen {

void JpegInput::Fill() {
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
    if (byte != 0xFF || inventedBytes != 0) return byte;
    // Anything but a stuffed zero makes it a marker, which stays unread. So does a real FF at the
    // very end of the data: an invented byte is never 0.
    if (ReadRaw() != 0) Unread(2);
    return 0xFF;
}

std::uint64_t JpegInput::ReadEntropy48Slow() {
    std::uint64_t six = 0;
    for (int i = 0; i < 6; ++i) six = six << 8 | ReadEntropy();
    return six;
}

}  // namespace marvolen
