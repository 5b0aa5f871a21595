// Feeds a stream to the parser in one piece, byte by byte and in pieces that the input chooses. All
// three must give the same frames, and no frame may be longer than its slot. The input's first
// byte chooses the slots' capacity and seeds the cuts, the rest is the stream.

#include "net/frame_pool.h"
#include "net/multipart_parser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

struct Run {
    FramePool pool;
    MultipartParser parser;
    std::vector<std::uint8_t> seen;  // every frame's time and bytes, one behind the other

    void OnPicture(FramePtr frame) {
        if (frame->Length() > frame->Capacity()) std::abort();
        const auto note = [this](const void* bytes, std::size_t size) {
            const auto* const begin = static_cast<const std::uint8_t*>(bytes);
            seen.insert(seen.end(), begin, begin + size);
        };
        const std::uint32_t length = frame->Length();
        note(&length, sizeof length);
        if (frame->Time() != nullptr) note(frame->Time(), sizeof(SYSTEMTIME));
        note(frame->Data(), length);
        parser.SetBuffer(std::move(frame));
    }
};

// Parses the stream in pieces whose sizes nextSize gives. Each piece stands alone on the heap.
template <typename NextSize>
std::vector<std::uint8_t> Parse(std::span<const std::uint8_t> stream, std::uint32_t capacity,
                                NextSize nextSize) {
    Run run;
    if (!run.pool.Init(capacity, 1)) std::abort();
    run.parser.Init(run.pool.Acquire(),
                    [&run](FramePtr frame) { run.OnPicture(std::move(frame)); });
    while (!stream.empty()) {
        const std::size_t size = std::min<std::size_t>(nextSize(), stream.size());
        const auto piece = std::make_unique<std::uint8_t[]>(size);
        std::copy_n(stream.begin(), size, piece.get());
        run.parser.Feed({piece.get(), size});
        stream = stream.subspan(size);
    }
    return std::move(run.seen);
}

}  // namespace
}  // namespace marvolen

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marvolen;
    if (size == 0) return 0;
    const std::uint32_t capacity = data[0] % 4 == 0 ? kFrameCapacity : data[0];
    const std::span stream(data + 1, size - 1);
    const auto whole = Parse(stream, capacity, [&] { return stream.size(); });
    const auto bytewise = Parse(stream, capacity, [] { return std::size_t{1}; });
    std::uint32_t state = data[0];
    const auto cut = Parse(stream, capacity, [&] {
        state = state * 1664525 + 1013904223;
        return std::size_t{state >> 16} % 64 + 1;
    });
    if (whole != bytewise || whole != cut) std::abort();
    return 0;
}
