#include "tools/camera_server/scenes/light.h"

namespace marvolen::scenes {
namespace {

Vec3 SunAt(float bearing, float height) {
    return Normalised({std::sin(bearing), height, std::cos(bearing)});
}

}  // namespace

void LightUp(Scene& scene, Daylight daylight, float bearing, std::uint32_t seed) {
    Sky& sky = scene.sky;
    sky.seed = seed;
    switch (daylight) {
        case Daylight::Morning:
            sky.zenith = {0.26F, 0.46F, 0.82F};
            sky.horizon = {0.92F, 0.86F, 0.78F};
            sky.glow = {1.5F, 1.05F, 0.6F};
            sky.sunDirection = SunAt(bearing, 0.38F);
            sky.clouds = 0.42F;
            sky.cloudLight = {1.25F, 1.12F, 0.98F};
            sky.cloudShade = {0.52F, 0.54F, 0.62F};
            scene.keyColour = {1.75F, 1.38F, 0.92F};
            scene.ambientUp = {0.36F, 0.44F, 0.6F};
            scene.ambientDown = {0.2F, 0.19F, 0.16F};
            scene.fogDistance = 420;
            scene.clock = 7 * 3600 + 42 * 60;
            break;
        case Daylight::Noon:
            sky.zenith = {0.17F, 0.38F, 0.82F};
            sky.horizon = {0.72F, 0.84F, 0.98F};
            sky.glow = {1.2F, 1.1F, 0.9F};
            sky.sunDirection = SunAt(bearing, 1.15F);
            sky.clouds = 0.5F;
            sky.cloudLight = {1.35F, 1.33F, 1.3F};
            sky.cloudShade = {0.55F, 0.6F, 0.7F};
            scene.keyColour = {1.75F, 1.62F, 1.38F};
            scene.ambientUp = {0.42F, 0.52F, 0.68F};
            scene.ambientDown = {0.24F, 0.23F, 0.2F};
            scene.fogDistance = 700;
            scene.clock = 12 * 3600 + 18 * 60;
            break;
        case Daylight::Overcast:
            sky.zenith = {0.62F, 0.66F, 0.72F};
            sky.horizon = {0.86F, 0.88F, 0.9F};
            sky.glow = {0.25F, 0.25F, 0.25F};
            sky.sunDirection = SunAt(bearing, 1.4F);
            sky.clouds = 0.85F;
            sky.cloudLight = {0.95F, 0.97F, 1.0F};
            sky.cloudShade = {0.5F, 0.53F, 0.58F};
            scene.keyColour = {0.42F, 0.42F, 0.42F};
            scene.ambientUp = {0.86F, 0.9F, 0.98F};
            scene.ambientDown = {0.32F, 0.32F, 0.32F};
            scene.fogDistance = 520;
            scene.clock = 10 * 3600 + 7 * 60;
            scene.saturation = 0.84F;
            break;
        case Daylight::Evening:
            sky.zenith = {0.2F, 0.32F, 0.6F};
            sky.horizon = {1.15F, 0.68F, 0.38F};
            sky.glow = {2.2F, 1.1F, 0.42F};
            sky.sunDirection = SunAt(bearing, 0.2F);
            sky.disc = 4;
            sky.clouds = 0.55F;
            sky.cloudLight = {1.25F, 0.78F, 0.52F};
            sky.cloudShade = {0.34F, 0.29F, 0.38F};
            scene.keyColour = {1.9F, 1.05F, 0.5F};
            scene.ambientUp = {0.36F, 0.38F, 0.52F};
            scene.ambientDown = {0.24F, 0.18F, 0.14F};
            scene.fogDistance = 380;
            scene.clock = 18 * 3600 + 51 * 60;
            break;
        case Daylight::Dusk:
            sky.zenith = {0.045F, 0.08F, 0.2F};
            sky.horizon = {0.34F, 0.25F, 0.3F};
            sky.glow = {0.55F, 0.25F, 0.14F};
            sky.sunDirection = SunAt(bearing, 0.03F);
            sky.clouds = 0.5F;
            sky.cloudLight = {0.3F, 0.21F, 0.25F};
            sky.cloudShade = {0.07F, 0.08F, 0.13F};
            sky.stars = 0.25F;
            scene.keyColour = {};
            scene.ambientUp = {0.15F, 0.18F, 0.3F};
            scene.ambientDown = {0.09F, 0.08F, 0.08F};
            scene.fogDistance = 300;
            scene.noise = 4.2F;
            scene.clock = 20 * 3600 + 36 * 60;
            break;
        case Daylight::Night:
            sky.zenith = {0.010F, 0.015F, 0.035F};
            sky.horizon = {0.09F, 0.07F, 0.06F};
            sky.glow = {0.10F, 0.11F, 0.13F};
            sky.sunDirection = SunAt(bearing, 0.5F);
            sky.disc = 12;
            sky.clouds = 0.35F;
            sky.cloudLight = {0.05F, 0.048F, 0.055F};
            sky.cloudShade = {0.018F, 0.018F, 0.024F};
            sky.stars = 0.8F;
            scene.keyColour = {0.07F, 0.08F, 0.1F};
            scene.ambientUp = {0.055F, 0.06F, 0.085F};
            scene.ambientDown = {0.05F, 0.042F, 0.035F};
            scene.fogDistance = 400;
            scene.noise = 5;
            scene.clock = 23 * 3600 + 14 * 60;
            break;
    }
    scene.keyDirection = sky.sunDirection;
    if (daylight == Daylight::Dusk) scene.keyDirection = {0.2F, 1, 0.1F};
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
