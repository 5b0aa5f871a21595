#pragma once

// Everything a painted camera sees: bodies that stand still, bodies that move in a loop, light,
// weather, and how the camera itself behaves.

#include "tools/camera_server/scenes/shape.h"
#include "tools/camera_server/scenes/sky.h"

#include <functional>
#include <string>
#include <vector>

namespace marvolen::scenes {

struct Lamp {
    Vec3 position;
    Vec3 colour;      // at one metre
    float reach = 8;  // metres; no light beyond
};

struct Scene {
    Vec3 eye = {0, 5, -10};
    Vec3 target = {0, 1, 5};
    float fieldOfView = 60;  // degrees, from left to right

    Sky sky;
    Vec3 keyDirection = {0.3F, 0.8F, -0.5F};  // towards the one light that throws shadows
    Vec3 keyColour = {};
    Vec3 ambientUp = {};    // light from above
    Vec3 ambientDown = {};  // and from below
    float fogDistance = 0;  // metres at which two thirds are gone; 0: clear
    float occlusionReach = 2.5F;
    std::vector<Lamp> lamps;

    std::vector<Shape> still;
    std::vector<Shape> ghosts;  // seen in the water only, where moving bodies rest
    // Adds the bodies that move, as they are at a phase of the loop, 0 to 1; 1 looks like 0.
    std::function<void(float phase, std::vector<Shape>& moving)> animate;

    enum class Weather { Dry, Rain, Snow };
    Weather weather = Weather::Dry;

    float exposure = 1;
    float saturation = 0.88F;
    float noise = 3;        // standard deviation of a sample, of 255
    bool infrared = false;  // sees by its own light, without colour
    float seconds = 2;      // the loop's length
    int clock = 12 * 3600;  // time of day shown in the picture, seconds
};

}  // namespace marvolen::scenes
