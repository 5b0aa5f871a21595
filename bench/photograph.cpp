#include "bench/photograph.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <turbojpeg.h>

namespace marvolen::bench {
namespace {

// Smooth noise in -1..1: a lattice of hashed values, blended.
double ValueNoise(double x, double y, unsigned seed) {
    const auto lattice = [seed](int column, int row) {
        unsigned hash = seed + static_cast<unsigned>(column) * 374761393U +
                        static_cast<unsigned>(row) * 668265263U;
        hash = (hash ^ hash >> 13) * 1274126177U;
        return static_cast<double>((hash ^ hash >> 16) & 0xFFFF) / 32767.5 - 1.0;
    };
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto fade = [](double t) { return t * t * (3 - 2 * t); };
    const double u = fade(x - left);
    const double v = fade(y - top);
    const int column = static_cast<int>(left);
    const int row = static_cast<int>(top);
    const double upper = std::lerp(lattice(column, row), lattice(column + 1, row), u);
    const double lower = std::lerp(lattice(column, row + 1), lattice(column + 1, row + 1), u);
    return std::lerp(upper, lower, v);
}

double Texture(double x, double y, unsigned seed) {
    double sum = 0;
    double strength = 1;
    for (double scale = 64; scale >= 2; scale /= 2, strength *= 0.62) {
        sum += strength * ValueNoise(x / scale, y / scale, seed + static_cast<unsigned>(scale));
    }
    return sum;
}

}  // namespace

Picture MakePhotograph(int width, int height, int noise, unsigned seed) {
    Picture picture{width, height, {}};
    picture.rgb.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> grain(-noise, noise);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double light = 150.0 - 90.0 * y / height + 40.0 * x / width;
            const double texture = 34 * Texture(x, y, seed);
            // Bricks in the lower half, a bright lamp, a dark pole.
            const bool joint = y % 24 < 2 || (x + (y / 24 % 2) * 24) % 48 < 2;
            const double bricks = y > height / 2 ? (joint ? 45.0 : -15.0) : 0.0;
            const double lamp = std::hypot(x - 0.7 * width, y - 0.25 * height) < 40 ? 120.0 : 0.0;
            const double pole = x > width / 4 && x < width / 4 + 9 ? -110.0 : 0.0;
            const double base = light + texture + bricks + lamp + pole + grain(random);
            const double hue = 30 * ValueNoise(x / 90.0, y / 70.0, seed + 99);
            for (const double colour : {base + hue + bricks / 2, base, base - hue + 0.1 * lamp}) {
                picture.rgb.push_back(static_cast<std::uint8_t>(std::clamp(colour, 0.0, 255.0)));
            }
        }
    }
    return picture;
}

std::vector<std::uint8_t> EncodeJpeg(const Picture& picture, int quality) {
    const tjhandle encoder = tjInitCompress();
    unsigned char* jpeg = nullptr;
    unsigned long size = 0;
    tjCompress2(encoder, picture.rgb.data(), picture.width, 0, picture.height, TJPF_RGB, &jpeg,
                &size, TJSAMP_420, quality, 0);
    std::vector<std::uint8_t> bytes(jpeg, jpeg + size);
    tjFree(jpeg);
    tjDestroy(encoder);
    return bytes;
}

}  // namespace marvolen::bench
