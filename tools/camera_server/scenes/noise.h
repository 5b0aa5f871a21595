#pragma once

// Repeatable randomness for textures: hashes, and smooth noise from one small tile.

#include <cstdint>

namespace marvolen::scenes {

// A well mixed 32-bit hash of two whole numbers and a seed.
std::uint32_t Hash(std::int32_t a, std::int32_t b = 0, std::uint32_t seed = 0);

// The same as a number in [0, 1).
float HashUnit(std::int32_t a, std::int32_t b = 0, std::uint32_t seed = 0);

// Smooth noise in [0, 1], about one hill a unit; repeats every 256 units.
float Noise(float u, float v);

// Noise plus finer and fainter copies of itself, each twice as fine, in [0, 1]. Copies finer than
// footprint, the size of a pixel in units, are left out, so that distant texture doesn't glitter.
float Fractal(float u, float v, int octaves, float footprint = 0);

}  // namespace marvolen::scenes
