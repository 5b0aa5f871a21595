#include "tools/camera_server/scenes/noise.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace marvolen::scenes {
namespace {

constexpr std::int32_t kTile = 256;

std::array<float, kTile * kTile> MakeTile() {
    std::array<float, kTile * kTile> tile{};
    for (std::int32_t y = 0; y < kTile; ++y) {
        for (std::int32_t x = 0; x < kTile; ++x) {
            tile[static_cast<std::size_t>(y * kTile + x)] = HashUnit(x, y, 77);
        }
    }
    return tile;
}

float At(std::int32_t x, std::int32_t y) {
    static const std::array<float, kTile* kTile> kNoise = MakeTile();
    return kNoise[static_cast<std::size_t>((y & (kTile - 1)) * kTile + (x & (kTile - 1)))];
}

}  // namespace

std::uint32_t Hash(std::int32_t a, std::int32_t b, std::uint32_t seed) {
    std::uint32_t h = static_cast<std::uint32_t>(a) * 0x9E3779B1U ^
                      static_cast<std::uint32_t>(b) * 0x85EBCA77U ^ (seed + 1) * 0xC2B2AE3DU;
    h = (h ^ h >> 15) * 0x2C1B3C6DU;
    h = (h ^ h >> 12) * 0x297A2D39U;
    return h ^ h >> 15;
}

float HashUnit(std::int32_t a, std::int32_t b, std::uint32_t seed) {
    return static_cast<float>(Hash(a, b, seed) >> 8) / 16777216.0F;
}

float Noise(float u, float v) {
    const float fu = std::floor(u);
    const float fv = std::floor(v);
    const auto x = static_cast<std::int32_t>(fu);
    const auto y = static_cast<std::int32_t>(fv);
    float s = u - fu;
    float t = v - fv;
    s = s * s * (3 - 2 * s);
    t = t * t * (3 - 2 * t);
    const float top = At(x, y) + (At(x + 1, y) - At(x, y)) * s;
    const float bottom = At(x, y + 1) + (At(x + 1, y + 1) - At(x, y + 1)) * s;
    return top + (bottom - top) * t;
}

float Fractal(float u, float v, int octaves, float footprint) {
    float sum = 0;
    float weight = 0.5F;
    float total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * (footprint < 1 ? Noise(u, v) : 0.5F);
        total += weight;
        // Turning each copy hides the tile's grid.
        const float turned = u * 1.62F + v * 1.17F;
        v = v * 1.62F - u * 1.17F + 17.3F;
        u = turned;
        footprint *= 2;
        weight *= 0.5F;
    }
    return sum / total;
}

}  // namespace marvolen::scenes
