#pragma once

// Movement that ends where it began.

#include "tools/camera_server/scenes/props.h"

namespace marvolen::scenes {

// A lane along z: cars from z = from towards z = to (backwards when to is less), `speed` metres a
// second. A lane repeats itself within one loop's way, so all its cars look the same; offset shifts
// them, as a share of that way.
struct Lane {
    float x = 0;
    float from = 0;
    float to = 0;
    float speed = 12;
    float offset = 0;
    CarLook car = {};
};

void AddTraffic(Shapes& moving, const Lane& lane, float phase, float seconds);

// The same across the picture: along x at z = lane.x.
void AddCrossTraffic(Shapes& moving, const Lane& lane, float phase, float seconds);

// There and back: 0 at phase 0, 1 at phase 1/2.
float ToAndFro(float phase);

// Between 0 and 1 again and again, n times in a loop, smoothly; shift as a share of a swing.
float Swing(float phase, int n = 1, float shift = 0);

// Somebody who walks from one place to another during the loop; both should be out of sight.
void AddWalker(Shapes& moving, const Vec3& from, const Vec3& to, float phase, float seconds,
               const PersonLook& look);

// Somebody who stands, shifts from foot to foot and looks about.
void AddStander(Shapes& moving, const Vec3& at, float heading, float phase, const PersonLook& look);

}  // namespace marvolen::scenes
