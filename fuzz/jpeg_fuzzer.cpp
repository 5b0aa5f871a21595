// Decodes whatever it is given, on both paths and with sources that hand out their bytes in
// portions of different sizes: all of them must see the same picture and the same error.

#include "jpeg/jpeg_decoder.h"
#include "jpeg/jpeg_source.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Larger pictures only make the fuzzer slow: what they run through, small ones do too.
constexpr int kMaxPixels = 256 * 256;

class PortionSource final : public marvolen::JpegSource {
public:
    PortionSource(const std::uint8_t* data, std::size_t size, std::ptrdiff_t newPortion)
        : current(data), end(data + size), portion(newPortion) {}

    int Read(void* destination, int maxCount, bool* endOfData) override {
        const std::ptrdiff_t count = std::min({portion, std::ptrdiff_t{maxCount}, end - current});
        std::copy_n(current, count, static_cast<std::uint8_t*>(destination));
        current += count;
        if (current == end) *endOfData = true;
        return static_cast<int>(count);
    }

private:
    const std::uint8_t* current;
    const std::uint8_t* end;
    std::ptrdiff_t portion;
};

struct Outcome {
    int error = 0;
    int rows = 0;
    std::uint64_t hash = 14695981039346656037U;

    bool operator==(const Outcome&) const = default;
};

Outcome Decode(const std::uint8_t* data, std::size_t size, bool fast, std::ptrdiff_t portion) {
    Outcome outcome;
    PortionSource source(data, size, portion);
    marvolen::JpegDecoder decoder(&source, fast);
    if (decoder.GetWidth() * decoder.GetHeight() <= kMaxPixels && decoder.StartDecompress() == 0) {
        const std::uint8_t* row = nullptr;
        int rowBytes = 0;
        while (decoder.ReadScanline(&row, &rowBytes) == 0) {
            ++outcome.rows;
            for (int i = 0; i < rowBytes; ++i) {
                outcome.hash = (outcome.hash ^ row[i]) * 1099511628211U;
            }
        }
    }
    outcome.error = decoder.GetError();
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const bool fast : {true, false}) {
        const Outcome whole = Decode(data, size, fast, PTRDIFF_MAX);
        for (const std::ptrdiff_t portion : {1, 13, 4095}) {
            if (!(Decode(data, size, fast, portion) == whole)) std::abort();
        }
    }
    return 0;
}
