#pragma once

#include "jpeg/jpeg_source.h"

#include <cstddef>
#include <cstdint>

namespace marvolen {

// A source over one byte range that the caller owns and keeps unchanged while the source lives.
// Construction copies nothing.
class MemoryJpegSource final : public JpegSource {
public:
    MemoryJpegSource(const std::uint8_t* bytes, std::size_t length)
        : current(bytes), end(bytes + length) {}

    // Never fails; reports the end together with the last byte.
    int Read(void* destination, int maxCount, bool* endOfData) override;

    std::span<const std::uint8_t> WholeData() const override { return {current, end}; }

private:
    const std::uint8_t* current;
    const std::uint8_t* end;
};

}  // namespace marvolen
