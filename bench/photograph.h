#pragma once

#include <cstdint>
#include <vector>

namespace marvolen::bench {

// An RGB picture, three bytes a pixel, top row first.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

// A made-up photograph: gradients, surfaces with texture, hard edges and sensor noise of strength
// noise (0 to 20). Encoded at 704 x 480 its size is a camera picture's. The same arguments give
// the same picture.
Picture MakePhotograph(int width, int height, int noise = 6, unsigned seed = 1);

// The picture as a JPEG image, 4:2:0, of quality 1 to 100.
std::vector<std::uint8_t> EncodeJpeg(const Picture& picture, int quality);

}  // namespace marvolen::bench
