#include "tools/camera_server/scenes/light.h"

#include <cstddef>

namespace marvolen::scenes {
namespace {

struct DaylightRow {
    float sunHeight;  // tangent of its height above the horizon
    float disc;
    float clouds;
    float stars;
    Vec3 zenith, horizon, glow;
    Vec3 cloudLight, cloudShade;
    Vec3 keyColour, ambientUp, ambientDown;
    float hazeDistance;  // metres
    float noise;
    float saturation;
    int clock;
};

// In the order of Daylight.
constexpr DaylightRow kDaylights[] = {
    // Morning
    {.sunHeight = 0.38F,
     .disc = 0,
     .clouds = 0.42F,
     .stars = 0,
     .zenith = {0.26F, 0.46F, 0.82F},
     .horizon = {0.92F, 0.86F, 0.78F},
     .glow = {1.5F, 1.05F, 0.6F},
     .cloudLight = {1.25F, 1.12F, 0.98F},
     .cloudShade = {0.52F, 0.54F, 0.62F},
     .keyColour = {1.75F, 1.38F, 0.92F},
     .ambientUp = {0.36F, 0.44F, 0.6F},
     .ambientDown = {0.2F, 0.19F, 0.16F},
     .hazeDistance = 420,
     .noise = 3,
     .saturation = 0.88F,
     .clock = 7 * 3600 + 42 * 60},
    // Noon
    {.sunHeight = 1.15F,
     .disc = 0,
     .clouds = 0.5F,
     .stars = 0,
     .zenith = {0.17F, 0.38F, 0.82F},
     .horizon = {0.72F, 0.84F, 0.98F},
     .glow = {1.2F, 1.1F, 0.9F},
     .cloudLight = {1.35F, 1.33F, 1.3F},
     .cloudShade = {0.55F, 0.6F, 0.7F},
     .keyColour = {1.75F, 1.62F, 1.38F},
     .ambientUp = {0.42F, 0.52F, 0.68F},
     .ambientDown = {0.24F, 0.23F, 0.2F},
     .hazeDistance = 700,
     .noise = 3,
     .saturation = 0.88F,
     .clock = 12 * 3600 + 18 * 60},
    // Overcast
    {.sunHeight = 1.4F,
     .disc = 0,
     .clouds = 0.85F,
     .stars = 0,
     .zenith = {0.62F, 0.66F, 0.72F},
     .horizon = {0.86F, 0.88F, 0.9F},
     .glow = {0.25F, 0.25F, 0.25F},
     .cloudLight = {0.95F, 0.97F, 1.0F},
     .cloudShade = {0.5F, 0.53F, 0.58F},
     .keyColour = {0.42F, 0.42F, 0.42F},
     .ambientUp = {0.86F, 0.9F, 0.98F},
     .ambientDown = {0.32F, 0.32F, 0.32F},
     .hazeDistance = 520,
     .noise = 3,
     .saturation = 0.84F,
     .clock = 10 * 3600 + 7 * 60},
    // Evening
    {.sunHeight = 0.2F,
     .disc = 4,
     .clouds = 0.55F,
     .stars = 0,
     .zenith = {0.2F, 0.32F, 0.6F},
     .horizon = {1.15F, 0.68F, 0.38F},
     .glow = {2.2F, 1.1F, 0.42F},
     .cloudLight = {1.25F, 0.78F, 0.52F},
     .cloudShade = {0.34F, 0.29F, 0.38F},
     .keyColour = {1.9F, 1.05F, 0.5F},
     .ambientUp = {0.36F, 0.38F, 0.52F},
     .ambientDown = {0.24F, 0.18F, 0.14F},
     .hazeDistance = 380,
     .noise = 3,
     .saturation = 0.88F,
     .clock = 18 * 3600 + 51 * 60},
    // Dusk
    {.sunHeight = 0.03F,
     .disc = 0,
     .clouds = 0.5F,
     .stars = 0.25F,
     .zenith = {0.045F, 0.08F, 0.2F},
     .horizon = {0.34F, 0.25F, 0.3F},
     .glow = {0.55F, 0.25F, 0.14F},
     .cloudLight = {0.3F, 0.21F, 0.25F},
     .cloudShade = {0.07F, 0.08F, 0.13F},
     .keyColour = {},
     .ambientUp = {0.15F, 0.18F, 0.3F},
     .ambientDown = {0.09F, 0.08F, 0.08F},
     .hazeDistance = 300,
     .noise = 4.2F,
     .saturation = 0.88F,
     .clock = 20 * 3600 + 36 * 60},
    // Night
    {.sunHeight = 0.5F,
     .disc = 12,
     .clouds = 0.35F,
     .stars = 0.8F,
     .zenith = {0.010F, 0.015F, 0.035F},
     .horizon = {0.09F, 0.07F, 0.06F},
     .glow = {0.10F, 0.11F, 0.13F},
     .cloudLight = {0.05F, 0.048F, 0.055F},
     .cloudShade = {0.018F, 0.018F, 0.024F},
     .keyColour = {0.07F, 0.08F, 0.1F},
     .ambientUp = {0.055F, 0.06F, 0.085F},
     .ambientDown = {0.05F, 0.042F, 0.035F},
     .hazeDistance = 400,
     .noise = 5,
     .saturation = 0.88F,
     .clock = 23 * 3600 + 14 * 60},
};

Vec3 SunAt(float bearing, float height) {
    return Normalised({std::sin(bearing), height, std::cos(bearing)});
}

}  // namespace

void LightUp(Scene& scene, Daylight daylight, float bearing, std::uint32_t seed) {
    const DaylightRow& row = kDaylights[static_cast<std::size_t>(daylight)];
    scene.sky = {.zenith = row.zenith,
                 .horizon = row.horizon,
                 .sunDirection = SunAt(bearing, row.sunHeight),
                 .glow = row.glow,
                 .disc = row.disc,
                 .clouds = row.clouds,
                 .cloudLight = row.cloudLight,
                 .cloudShade = row.cloudShade,
                 .stars = row.stars,
                 .seed = seed};
    scene.keyColour = row.keyColour;
    scene.ambientUp = row.ambientUp;
    scene.ambientDown = row.ambientDown;
    scene.fogDistance = row.hazeDistance;
    scene.noise = row.noise;
    scene.saturation = row.saturation;
    scene.clock = row.clock;
    // With the sun down what light there is comes from above.
    scene.keyDirection = daylight == Daylight::Dusk ? Vec3{0.2F, 1, 0.1F} : scene.sky.sunDirection;
}

void LightRoom(Scene& scene, const Vec3& lampColour, float strength) {
    scene.sky.zenith = lampColour * (0.5F * strength);
    scene.sky.horizon = lampColour * (0.4F * strength);
    scene.sky.clouds = 0;
    scene.keyDirection = {0.16F, 1, -0.22F};
    scene.keyColour = lampColour * (0.75F * strength);
    scene.ambientUp = lampColour * (0.62F * strength);
    scene.ambientDown = lampColour * (0.5F * strength);
    scene.occlusionReach = 1.6F;
    scene.noise = 3.4F;
    scene.clock = 14 * 3600 + 23 * 60;
}

float LitWindows(Daylight daylight) {
    switch (daylight) {
        case Daylight::Dusk:
            return 0.45F;
        case Daylight::Night:
            return 0.3F;
        case Daylight::Evening:
            return 0.14F;
        case Daylight::Overcast:
            return 0.08F;
        default:
            return 0;
    }
}

bool LampsBurn(Daylight daylight) {
    return daylight == Daylight::Dusk || daylight == Daylight::Night;
}

}  // namespace marvolen::scenes
