#include "tools/camera_server/picture_source.h"

#include <utility>

namespace marvolen {

PictureExtent ExtentOf(PictureSize size) {
    switch (size) {
        case PictureSize::Full:
            return {704, 480};
        case PictureSize::Sif:
            return {352, 240};
        case PictureSize::Qsif:
            break;
    }
    return {176, 120};
}

const char* SizeName(PictureSize size) {
    switch (size) {
        case PictureSize::Full:
            return "full";
        case PictureSize::Sif:
            return "sif";
        case PictureSize::Qsif:
            break;
    }
    return "qsif";
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
