#pragma once

#include <cstdint>

namespace marvolen {

// biCompression of pixels that are stored as they are.
inline constexpr std::uint32_t BI_RGB = 0;

// Head of a device-independent bitmap, in the layout that AVI files and clipboards use: ten
// little-endian fields in 40 bytes. A positive biHeight means that the bottom row comes first.
struct BITMAPINFOHEADER {
    std::uint32_t biSize = 0;         // size of this head, 40
    std::int32_t biWidth = 0;         // pixels per row
    std::int32_t biHeight = 0;        // rows; positive: bottom-up
    std::uint16_t biPlanes = 0;       // always 1
    std::uint16_t biBitCount = 0;     // bits per pixel
    std::uint32_t biCompression = 0;  // BI_RGB, or a four-character code
    std::uint32_t biSizeImage = 0;    // bytes of all rows, padding included
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;

    bool operator==(const BITMAPINFOHEADER&) const = default;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

}  // namespace marvolen
