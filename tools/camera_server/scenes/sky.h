#pragma once

// What is seen where no body is: sky, sun, clouds, stars, and far ridges of mountains, trees or
// houses along the horizon.

#include "tools/camera_server/scenes/vec3.h"

#include <cstdint>
#include <vector>

namespace marvolen::scenes {

struct Ridge {
    enum class Kind : std::uint8_t { Mountains, Trees, City };

    Kind kind = Kind::Mountains;
    float base = 0.02F;      // height above the horizon, as a slope
    float amplitude = 0.1F;  // how far tops rise above base
    float frequency = 3.0F;  // hills, or houses, per radian
    Vec3 colour = {};        // as seen from here, haze included
    Vec3 tops = {};          // snow, sunlit crowns, or lit windows
    float topShare = 0;      // how much of it shows the colour of tops
};

struct Sky {
    Vec3 zenith = {};
    Vec3 horizon = {};
    Vec3 sunDirection = {0, 1, 0};  // towards the sun or moon
    Vec3 glow = {};                 // around the sun
    float disc = 0;                 // brightness of its disc, in multiples of glow
    float clouds = 0;               // 0 none, 1 all over
    Vec3 cloudLight = {};
    Vec3 cloudShade = {};
    float stars = 0;
    std::uint32_t seed = 0;
    std::vector<Ridge> ridges = {};  // the farthest first
};

// The light coming from direction, which has length 1.
Vec3 SkyColour(const Sky& sky, const Vec3& direction);

// The upper half of a sky, painted once for quick looks, as reflections need them.
class SkyMap {
public:
    explicit SkyMap(const Sky& sky);

    // Directions below the horizon count as those just above it.
    Vec3 Look(const Vec3& direction) const;

private:
    std::vector<Vec3> texels;
};

}  // namespace marvolen::scenes
