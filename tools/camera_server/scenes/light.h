#pragma once

// Light for scenes under the open sky: sun, sky, haze and the camera's answer to them.

#include "tools/camera_server/scenes/scene.h"

namespace marvolen::scenes {

enum class Daylight { Morning, Noon, Overcast, Evening, Dusk, Night };

// Sets the scene's sky, key light, ambient light, haze, noise and clock. bearing turns the sun,
// radians from straight behind the scene; seed chooses the clouds.
void LightUp(Scene& scene, Daylight daylight, float bearing, std::uint32_t seed);

// A closed room under even lamp light from above.
void LightRoom(Scene& scene, const Vec3& lampColour, float strength);

// The share of windows with a lamp on.
float LitWindows(Daylight daylight);

// Whether street lamps burn.
bool LampsBurn(Daylight daylight);

}  // namespace marvolen::scenes
