#pragma once

// Things that stand or move about in scenes, put together from bodies. `at` is where a thing meets
// the ground; heading 0 looks along z, positive turns towards x.

#include "tools/camera_server/scenes/scene.h"

#include <cstdint>
#include <vector>

namespace marvolen::scenes {

using Shapes = std::vector<Shape>;

Shape Block(const Vec3& centre, const Vec3& half, Surface surface, const Vec3& colour);
Shape Column(const Vec3& centre, float radius, float halfHeight, Surface surface,
             const Vec3& colour);
Shape Ball(const Vec3& centre, const Vec3& half, Surface surface, const Vec3& colour);
Shape GroundOf(Surface surface, const Vec3& colour, float parameter = 0);
Shape Glow(const Vec3& centre, const Vec3& half, const Vec3& colour, float strength);

enum class CarBody { Saloon, Estate, Van, Lorry };

struct CarLook {
    CarBody body = CarBody::Saloon;
    Vec3 colour = {0.3F, 0.3F, 0.3F};
    bool lights = false;
};

// A body and a colour as they are common on the road.
CarLook CommonCar(std::uint32_t seed);

void AddCar(Shapes& shapes, const Vec3& at, float heading, const CarLook& look);

struct PersonLook {
    Vec3 jacket = {0.1F, 0.15F, 0.3F};
    Vec3 trousers = {0.05F, 0.05F, 0.07F};
    Vec3 hair = {0.06F, 0.04F, 0.03F};
    float height = 1.75F;
};

PersonLook CommonPerson(std::uint32_t seed);

// stride swings the limbs, in steps; a whole number of double steps looks like none.
void AddPerson(Shapes& shapes, const Vec3& at, float heading, float stride, const PersonLook& look);

void AddTree(Shapes& shapes, const Vec3& at, float height, const Vec3& leaves, std::uint32_t seed);
void AddBush(Shapes& shapes, const Vec3& at, float radius, const Vec3& leaves, std::uint32_t seed);

// A post of that height; when it burns its light is added to the scene's lamps.
void AddStreetLamp(Scene& scene, const Vec3& at, float height, float reachX, bool burns,
                   const Vec3& colour);

// A box of a house with windows; roofHeight 0: flat. litShare of its windows shine.
void AddHouse(Shapes& shapes, const Vec3& foot, const Vec3& half, float roofHeight,
              const Vec3& walls, float litShare, std::uint32_t seed);

void AddSailingBoat(Shapes& shapes, const Vec3& at, float heading, float roll, float length,
                    const Vec3& hull, bool sail);

// lift: height of the forks.
void AddForklift(Shapes& shapes, const Vec3& at, float heading, float lift, const Vec3& colour);

// Turns what was added since `from` about the vertical through pivot.
void TurnSince(Shapes& shapes, std::size_t from, const Vec3& pivot, float radians);

}  // namespace marvolen::scenes
