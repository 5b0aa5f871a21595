#pragma once

// How bodies look close up: colour, gloss and glow at a point of their surface.

#include "tools/camera_server/scenes/shape.h"

namespace marvolen::scenes {

struct Look {
    Vec3 colour = {};  // share of light that is scattered back
    float gloss = 0;   // share that is mirrored, seen straight on
    Vec3 glow = {};    // light of its own
};

// footprint is the size of a pixel at the point, in metres; detail finer than that fades out.
Look LookOf(const Shape& shape, const Vec3& point, const Vec3& normal, float footprint);

}  // namespace marvolen::scenes
