#pragma once

// The bodies that scenes are built of, and where a ray meets them.

#include "tools/camera_server/scenes/vec3.h"

#include <cstdint>

namespace marvolen::scenes {

// What a body is made of; surface.h says how that looks.
enum class Surface : std::uint8_t {
    Plain,
    Asphalt,
    Concrete,
    Brick,
    Grass,
    Leaves,  // has holes
    Water,
    Wood,
    SheetMetal,
    Facade,  // rows of windows
    Tiles,
    RoofTiles,
    Gravel,
    Sand,
    Paint,  // glossy, as on cars
    Glass,
    Glowing,
    Leds,
    Street,    // an asphalt road along z with kerbs and pavements
    CarPark,   // marked bays left and right of an aisle along z
    Motorway,  // six lanes along z with a verge
    Path,      // a gravel path along z through grass
    Crates,
    Screen,
};

struct Ray {
    Vec3 origin;
    Vec3 direction;  // of length 1
};

struct Hit {
    float distance = 0;
    Vec3 normal;
};

struct Shape {
    enum class Kind : std::uint8_t {
        Block,      // half extents, narrowed towards the top by taper
        Ellipsoid,  // half axes
        Cylinder,   // upright in its own frame
        Ground,     // the infinite plane through centre
    };

    Kind kind = Kind::Block;
    Surface surface = Surface::Plain;
    bool castsShadow = true;
    Vec3 centre = {};
    Vec3 half = {1, 1, 1};
    // The body's own axes.
    Vec3 right = {1, 0, 0};
    Vec3 up = {0, 1, 0};
    Vec3 ahead = {0, 0, 1};
    float taperX = 0;  // 0: upright sides, 1: they meet at the top, below 0: wider there
    float taperZ = 0;
    Vec3 colour = {0.5F, 0.5F, 0.5F};
    float parameter = 0;  // meaning by surface
    std::uint32_t seed = 0;

    // Turns the body about its upright axis, then about the world's axis through pivot.
    void TurnAbout(const Vec3& pivot, float radians);
    // Tips the body about its own z axis.
    void Tip(float radians);

    Vec3 ToLocal(const Vec3& v) const { return {Dot(v, right), Dot(v, up), Dot(v, ahead)}; }
    Vec3 ToWorld(const Vec3& v) const { return right * v.x + up * v.y + ahead * v.z; }

    // Half extents of the upright box around the body.
    Vec3 Bounds() const;
};

// Where the ray meets the body first, nearer than hit.distance; hit is then replaced.
bool Intersect(const Shape& shape, const Ray& ray, Hit& hit);

}  // namespace marvolen::scenes
