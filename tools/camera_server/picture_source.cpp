#include "tools/camera_server/picture_source.h"

#include <utility>

namespace marvolen {

PictureExtent ExtentOf(PictureSize size) {
    const int divisor = 1 << static_cast<int>(size);
    return {704 / divisor, 480 / divisor};
}

const char* SizeName(PictureSize size) {
    constexpr const char* kNames[]{"full", "sif", "qsif"};
    return kNames[static_cast<std::size_t>(size)];
}

std::uint64_t HashBytes(const std::uint8_t* bytes, std::size_t count) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (std::size_t i = 0; i < count; ++i) hash = (hash ^ bytes[i]) * 0x100000001b3;
    return hash;
}

PicturePtr MakePicture(std::vector<std::uint8_t> jpeg) {
    const std::uint64_t hash = HashBytes(jpeg.data(), jpeg.size());
    return std::make_shared<const Picture>(Picture{std::move(jpeg), hash});
}

}  // namespace marvolen
