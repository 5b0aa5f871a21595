#include "tools/camera_server/pattern_pictures.h"

#include <algorithm>
#include <cstdint>
#include <random>

namespace marvolen {
namespace {

PicturePtr MakePattern(const View& view, std::size_t position, std::size_t averageBytes) {
    std::mt19937 random(static_cast<std::uint32_t>(
        position * 256 + static_cast<std::size_t>(view.channel) * 16 +
        static_cast<std::size_t>(view.camera) * 4 + static_cast<std::size_t>(view.size)));
    const std::size_t size =
        std::uniform_int_distribution(averageBytes / 2, averageBytes * 3 / 2)(random);
    std::vector<std::uint8_t> jpeg(std::max<std::size_t>(size, 4));
    // Neither 0xFF, which begins markers, nor '-' and ':', which boundaries and stamps need.
    for (std::uint8_t& byte : jpeg) {
        byte = static_cast<std::uint8_t>(random() >> 8);
        if (byte == 0xFF || byte == '-' || byte == ':') byte = 0;
    }
    jpeg[0] = 0xFF;
    jpeg[1] = 0xD8;
    jpeg[jpeg.size() - 2] = 0xFF;
    jpeg[jpeg.size() - 1] = 0xD9;
    return MakePicture(std::move(jpeg));
}

}  // namespace

PatternPictures::PatternPictures(std::size_t bytes, std::size_t length)
    : averageBytes(bytes), loopLength(std::max<std::size_t>(length, 1)) {}

PicturePtr PatternPictures::At(const View& view, std::uint64_t position) {
    std::vector<PicturePtr>& loop = loops[view];
    while (loop.size() < loopLength) loop.push_back(MakePattern(view, loop.size(), averageBytes));
    return loop[position % loopLength];
}

}  // namespace marvolen
