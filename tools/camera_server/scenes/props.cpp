#include "tools/camera_server/scenes/props.h"

#include "tools/camera_server/scenes/noise.h"

#include <array>
#include <numbers>

namespace marvolen::scenes {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

Shape Tapered(Shape shape, float taperX, float taperZ) {
    shape.taperX = taperX;
    shape.taperZ = taperZ;
    return shape;
}

Shape NoShadow(Shape shape) {
    shape.castsShadow = false;
    return shape;
}

void AddWheel(Shapes& shapes, const Vec3& centre, float radius) {
    for (const bool hub : {false, true}) {
        Shape wheel =
            Column(centre, hub ? radius * 0.55F : radius, hub ? 0.125F : 0.11F,
                   hub ? Surface::Paint : Surface::Plain, hub ? Rgb(0x9A9CA0) : Rgb(0x1A1A1B));
        wheel.Tip(kPi / 2);
        shapes.push_back(wheel);
    }
}

struct CarSize {
    float length, width, bodyTop, roof;
    float cabinFrom, cabinTo;  // along the car, shares of its length from the tail
};

CarSize SizeOf(CarBody body) {
    switch (body) {
        case CarBody::Estate:
            return {4.5F, 1.76F, 0.92F, 1.48F, 0.02F, 0.72F};
        case CarBody::Van:
            return {4.9F, 1.9F, 1.05F, 2.05F, 0.0F, 0.86F};
        case CarBody::Lorry:
            return {8.6F, 2.4F, 1.1F, 3.3F, 0.0F, 0.74F};
        case CarBody::Saloon:
            break;
    }
    return {4.4F, 1.74F, 0.88F, 1.42F, 0.16F, 0.74F};
}

}  // namespace

Shape Block(const Vec3& centre, const Vec3& half, Surface surface, const Vec3& colour) {
    Shape shape;
    shape.surface = surface;
    shape.centre = centre;
    shape.half = half;
    shape.colour = colour;
    shape.seed =
        Hash(static_cast<std::int32_t>(centre.x * 131), static_cast<std::int32_t>(centre.z * 137));
    return shape;
}

Shape Column(const Vec3& centre, float radius, float halfHeight, Surface surface,
             const Vec3& colour) {
    Shape shape = Block(centre, {radius, halfHeight, radius}, surface, colour);
    shape.kind = Shape::Kind::Cylinder;
    return shape;
}

Shape Ball(const Vec3& centre, const Vec3& half, Surface surface, const Vec3& colour) {
    Shape shape = Block(centre, half, surface, colour);
    shape.kind = Shape::Kind::Ellipsoid;
    return shape;
}

Shape GroundOf(Surface surface, const Vec3& colour, float parameter) {
    Shape shape = Block({}, {1, 1, 1}, surface, colour);
    shape.kind = Shape::Kind::Ground;
    shape.parameter = parameter;
    return shape;
}

Shape Glow(const Vec3& centre, const Vec3& half, const Vec3& colour, float strength) {
    Shape shape = NoShadow(Block(centre, half, Surface::Glowing, colour));
    shape.parameter = strength;
    return shape;
}

CarLook CommonCar(std::uint32_t seed) {
    static constexpr std::array<unsigned, 12> kColours{0xC9CCD0, 0x8C9096, 0x2B2D31, 0xECEDEE,
                                                       0x7E1F22, 0x23406E, 0x4F6B5A, 0xB4A88C,
                                                       0x5A3A34, 0xA8322B, 0x30506A, 0xD8D9D4};
    const std::uint32_t h = Hash(static_cast<std::int32_t>(seed), 4);
    CarLook look;
    look.colour = Rgb(kColours[h % kColours.size()]);
    look.body = (h >> 8) % 8 == 0   ? CarBody::Van
                : (h >> 8) % 3 == 0 ? CarBody::Estate
                                    : CarBody::Saloon;
    return look;
}

void AddCar(Shapes& shapes, const Vec3& at, float heading, const CarLook& look) {
    const std::size_t from = shapes.size();
    const CarSize size = SizeOf(look.body);
    const bool big = look.body == CarBody::Lorry;
    const float half = size.length / 2;
    const float side = size.width / 2;
    const float clearance = big ? 0.45F : 0.22F;
    const float wheel = big ? 0.48F : 0.31F;
    // Sides lean in a little, bonnet and boot slope.
    const float sill = (clearance + size.bodyTop) / 2;
    shapes.push_back(
        Tapered(Block(at + Vec3{0, sill, 0}, {side, (size.bodyTop - clearance) / 2, half},
                      Surface::Paint, look.colour),
                0.10F, 0.05F));
    shapes.push_back(Block(at + Vec3{0, clearance + 0.06F, 0}, {side * 1.01F, 0.07F, half * 1.01F},
                           Surface::Plain, Rgb(0x2A2A2C)));
    const float cabinMiddle = (size.cabinFrom + size.cabinTo) / 2 * size.length - half;
    const float cabinHalf = (size.cabinTo - size.cabinFrom) / 2 * size.length;
    const float cabinHeight = (size.roof - size.bodyTop) / 2;
    const bool boxy = look.body == CarBody::Van || big;
    const Vec3 cabin = at + Vec3{0, size.bodyTop + cabinHeight, cabinMiddle};
    if (boxy) {
        const Vec3 box = big ? Rgb(0xDAD9D4) : look.colour;
        shapes.push_back(Tapered(Block(cabin, {side * 0.99F, cabinHeight, cabinHalf},
                                       big ? Surface::SheetMetal : Surface::Paint, box),
                                 big ? 0.0F : 0.1F, big ? 0.0F : 0.06F));
        const float front = big ? half * 0.76F : half * 0.69F;
        const float glassTop = big ? 2.5F : size.roof - 0.12F;
        shapes.push_back(Tapered(
            Block(at + Vec3{0, (size.bodyTop + glassTop) / 2, front},
                  {side * 0.93F, (glassTop - size.bodyTop) / 2, half * (big ? 0.22F : 0.26F)},
                  Surface::Glass, Rgb(0x15191D)),
            0.14F, 0.5F));
    } else {
        const float slope = look.body == CarBody::Estate ? 0.36F : 0.62F;
        shapes.push_back(Tapered(
            Block(cabin, {side * 0.9F, cabinHeight, cabinHalf}, Surface::Glass, Rgb(0x14181C)),
            0.26F, slope));
        shapes.push_back(Tapered(Block(cabin + Vec3{0, cabinHeight - 0.035F, 0},
                                       {side * 0.69F, 0.04F, cabinHalf * (1 - slope * 0.93F)},
                                       Surface::Paint, look.colour),
                                 0.1F, 0.05F));
        for (const float pillar : {-0.02F, 0.45F}) {
            shapes.push_back(
                Tapered(Block(cabin + Vec3{0, 0, -cabinHalf * pillar},
                              {side * 0.91F, cabinHeight, 0.05F}, Surface::Paint, look.colour),
                        0.26F, 0));
        }
    }
    for (const float z : {-0.62F, 0.62F}) {
        for (const float x : {-1.0F, 1.0F}) {
            AddWheel(shapes, at + Vec3{x * (side - 0.09F), wheel, z * half}, wheel);
        }
    }
    for (const float x : {-0.72F, 0.72F}) {
        const Vec3 lamp{0.16F, 0.08F, 0.03F};
        const float y = clearance + (size.bodyTop - clearance) * 0.58F;
        shapes.push_back(Glow(at + Vec3{x * side, y, half * 0.985F}, lamp, Rgb(0xFFF2D8),
                              look.lights ? 3.5F : 0.35F));
        shapes.push_back(Glow(at + Vec3{x * side, y, -half * 0.985F}, lamp, Rgb(0xD01810),
                              look.lights ? 1.6F : 0.25F));
    }
    TurnSince(shapes, from, at, heading);
}

PersonLook CommonPerson(std::uint32_t seed) {
    static constexpr std::array<unsigned, 8> kJackets{0x26344E, 0x7A2430, 0x3F5A44, 0xC8C2B4,
                                                      0x2A2A2E, 0x3C6E9C, 0xB0882E, 0x6A4A6E};
    static constexpr std::array<unsigned, 4> kTrousers{0x23262E, 0x34455E, 0x5A5146, 0x17181A};
    const std::uint32_t h = Hash(static_cast<std::int32_t>(seed), 6);
    PersonLook look;
    look.jacket = Rgb(kJackets[h % kJackets.size()]);
    look.trousers = Rgb(kTrousers[(h >> 8) % kTrousers.size()]);
    look.hair = Mix(Rgb(0x1A120C), Rgb(0x8A6438), HashUnit(static_cast<std::int32_t>(seed), 7));
    look.height = 1.62F + 0.24F * HashUnit(static_cast<std::int32_t>(seed), 8);
    return look;
}

void AddPerson(Shapes& shapes, const Vec3& at, float heading, float stride,
               const PersonLook& look) {
    const std::size_t from = shapes.size();
    const float h = look.height;
    const float swing = std::sin(stride * kPi);
    for (const float side : {-1.0F, 1.0F}) {
        // A leg swings from the hip: its middle moves, its axis tilts.
        const float tilt = 0.42F * swing * side;
        Shape leg = Tapered(Block(at + Vec3{side * 0.09F, h * 0.245F, h * 0.245F * std::sin(tilt)},
                                  {0.075F, h * 0.245F, 0.085F}, Surface::Plain, look.trousers),
                            -0.25F, -0.2F);
        leg.up = {0, std::cos(tilt), -std::sin(tilt)};
        leg.ahead = {0, std::sin(tilt), std::cos(tilt)};
        shapes.push_back(leg);
        Shape arm = Tapered(Block(at + Vec3{side * 0.235F, h * 0.64F, -h * 0.12F * std::sin(tilt)},
                                  {0.055F, h * 0.17F, 0.06F}, Surface::Plain, look.jacket * 0.92F),
                            -0.2F, -0.2F);
        arm.up = {0, std::cos(tilt), std::sin(tilt)};
        arm.ahead = {0, -std::sin(tilt), std::cos(tilt)};
        shapes.push_back(arm);
    }
    shapes.push_back(
        Ball(at + Vec3{0, h * 0.66F, 0}, {0.2F, h * 0.19F, 0.13F}, Surface::Plain, look.jacket));
    shapes.push_back(Tapered(
        Block(at + Vec3{0, h * 0.6F, 0}, {0.17F, h * 0.13F, 0.105F}, Surface::Plain, look.jacket),
        -0.15F, 0));
    shapes.push_back(
        Column(at + Vec3{0, h * 0.845F, 0}, 0.05F, 0.05F, Surface::Plain, Rgb(0xC9976F)));
    shapes.push_back(
        Ball(at + Vec3{0, h * 0.92F, 0.01F}, {0.085F, 0.12F, 0.1F}, Surface::Plain, Rgb(0xD6A680)));
    shapes.push_back(
        Ball(at + Vec3{0, h * 0.945F, -0.02F}, {0.092F, 0.105F, 0.1F}, Surface::Plain, look.hair));
    TurnSince(shapes, from, at, heading);
}

void AddTree(Shapes& shapes, const Vec3& at, float height, const Vec3& leaves, std::uint32_t seed) {
    const auto s = static_cast<std::int32_t>(seed);
    shapes.push_back(Tapered(Column(at + Vec3{0, height * 0.28F, 0}, height * 0.028F,
                                    height * 0.28F, Surface::Wood, Rgb(0x4A3A2C)),
                             0, 0));
    for (std::int32_t i = 0; i < 9; ++i) {
        const float turn = static_cast<float>(i) * 2.4F + HashUnit(s, i);
        const float out = height * 0.17F * std::sqrt(static_cast<float>(i) / 9.0F + 0.05F) * 1.25F;
        const float size = height * (0.13F + 0.07F * HashUnit(s, i, 2));
        const float rise = height * (0.52F + 0.3F * HashUnit(s, i, 3));
        Shape crown = Ball(at + Vec3{out * std::cos(turn), rise, out * std::sin(turn)},
                           {size, size * 0.85F, size}, Surface::Leaves,
                           leaves * (0.8F + 0.4F * HashUnit(s, i, 4)));
        crown.seed = seed * 16 + static_cast<std::uint32_t>(i);
        shapes.push_back(crown);
    }
}

void AddBush(Shapes& shapes, const Vec3& at, float radius, const Vec3& leaves, std::uint32_t seed) {
    const auto s = static_cast<std::int32_t>(seed);
    for (std::int32_t i = 0; i < 3; ++i) {
        const Vec3 shift{radius * (HashUnit(s, i) - 0.5F) * 1.2F, radius * 0.55F,
                         radius * (HashUnit(s, i, 1) - 0.5F)};
        Shape ball =
            Ball(at + shift, Vec3{1, 0.8F, 0.9F} * (radius * (0.6F + 0.3F * HashUnit(s, i, 2))),
                 Surface::Leaves, leaves * (0.8F + 0.4F * HashUnit(s, i, 3)));
        ball.seed = seed * 8 + static_cast<std::uint32_t>(i);
        shapes.push_back(ball);
    }
}

void AddStreetLamp(Scene& scene, const Vec3& at, float height, float reachX, bool burns,
                   const Vec3& colour) {
    const Vec3 grey = Rgb(0x5C6064);
    scene.still.push_back(
        Column(at + Vec3{0, height / 2, 0}, 0.07F, height / 2, Surface::Plain, grey));
    const Vec3 head = at + Vec3{reachX, height, 0};
    scene.still.push_back(Block(at + Vec3{reachX / 2, height, 0},
                                {std::abs(reachX) / 2, 0.04F, 0.04F}, Surface::Plain, grey));
    scene.still.push_back(Block(head, {0.3F, 0.07F, 0.13F}, Surface::Plain, grey));
    scene.still.push_back(
        Glow(head - Vec3{0, 0.08F, 0}, {0.25F, 0.03F, 0.1F}, colour, burns ? 6.0F : 0.3F));
    if (burns) scene.lamps.push_back({head - Vec3{0, 0.2F, 0}, colour * 9.0F, height * 3.2F});
}

void AddHouse(Shapes& shapes, const Vec3& foot, const Vec3& half, float roofHeight,
              const Vec3& walls, float litShare, std::uint32_t seed) {
    Shape house = Block(foot + Vec3{0, half.y, 0}, half, Surface::Facade, walls);
    house.parameter = litShare;
    house.seed = seed;
    shapes.push_back(house);
    if (roofHeight > 0) {
        shapes.push_back(
            Tapered(Block(foot + Vec3{0, half.y * 2 + roofHeight / 2, 0},
                          {half.x * 1.06F, roofHeight / 2, half.z * 1.08F}, Surface::RoofTiles,
                          seed % 3 == 0 ? Rgb(0x54585E) : Rgb(0x8E4A36)),
                    half.x < half.z ? 0.97F : 0.1F, half.x < half.z ? 0.1F : 0.97F));
    } else {
        shapes.push_back(Block(foot + Vec3{0, half.y * 2 + 0.2F, 0},
                               {half.x * 1.02F, 0.22F, half.z * 1.02F}, Surface::Concrete,
                               walls * 0.8F));
    }
}

void AddSailingBoat(Shapes& shapes, const Vec3& at, float heading, float roll, float length,
                    const Vec3& hull, bool sail) {
    const std::size_t from = shapes.size();
    const float beam = length * 0.16F;
    const Vec3 white = Rgb(0xE9E7E0);
    // Seen from above a boat is an ellipse, near enough.
    const auto layer = [&](float height, float half, float share, Surface surface, const Vec3& c) {
        Shape shape = Column(at + Vec3{0, length * height, 0}, 1, length * half, surface, c);
        shape.half.x = beam * share;
        shape.half.z = length / 2 * share;
        shapes.push_back(shape);
    };
    layer(0.015F, 0.03F, 0.93F, Surface::Plain, hull * 0.35F);
    layer(0.065F, 0.045F, 1.0F, Surface::Paint, hull);
    layer(0.112F, 0.006F, 1.04F, Surface::Wood, Rgb(0x8A5A34));
    layer(0.12F, 0.006F, 0.95F, Surface::Wood, Rgb(0xB89468));
    shapes.push_back(
        Tapered(Block(at + Vec3{0, length * 0.15F, -length * 0.06F},
                      {beam * 0.7F, length * 0.045F, length * 0.2F}, Surface::Paint, white),
                0.3F, 0.25F));
    shapes.push_back(Column(at + Vec3{0, length * 0.65F, length * 0.08F}, 0.05F, length * 0.55F,
                            Surface::Plain, Rgb(0xC8C8C4)));
    shapes.push_back(Block(at + Vec3{0, length * 0.26F, -length * 0.16F},
                           {0.04F, 0.04F, length * 0.24F}, Surface::Plain, Rgb(0xB8B8B2)));
    if (sail) {
        shapes.push_back(
            Tapered(Block(at + Vec3{0.02F, length * 0.7F, -length * 0.13F},
                          {0.02F, length * 0.42F, length * 0.21F}, Surface::Plain, Rgb(0xF2EEE2)),
                    0, 0.95F));
    } else {
        shapes.push_back(Ball(at + Vec3{0, length * 0.285F, -length * 0.16F},
                              {0.09F, 0.1F, length * 0.22F}, Surface::Plain, Rgb(0x31456B)));
    }
    for (std::size_t i = from; i < shapes.size(); ++i) {
        // Rolls about the water line.
        const Vec3 arm = shapes[i].centre - at;
        shapes[i].centre = at + Vec3{arm.x * std::cos(roll) - arm.y * std::sin(roll),
                                     arm.x * std::sin(roll) + arm.y * std::cos(roll), arm.z};
        shapes[i].Tip(roll);
    }
    TurnSince(shapes, from, at, heading);
}

void AddForklift(Shapes& shapes, const Vec3& at, float heading, float lift, const Vec3& colour) {
    const std::size_t from = shapes.size();
    const Vec3 dark = Rgb(0x2A2B2D);
    shapes.push_back(
        Tapered(Block(at + Vec3{0, 0.62F, -0.35F}, {0.52F, 0.42F, 0.75F}, Surface::Paint, colour),
                0.06F, 0.12F));
    shapes.push_back(
        Block(at + Vec3{0, 1.15F, -0.95F}, {0.5F, 0.25F, 0.22F}, Surface::Paint, colour * 0.8F));
    for (const float x : {-0.46F, 0.46F}) {
        for (const float z : {-0.75F, 0.35F}) {
            shapes.push_back(
                Block(at + Vec3{x, 1.55F, z}, {0.04F, 0.6F, 0.04F}, Surface::Plain, dark));
        }
        shapes.push_back(
            Block(at + Vec3{x * 0.7F, 1.3F, 0.62F}, {0.06F, 1.2F, 0.06F}, Surface::Plain, dark));
        shapes.push_back(Block(at + Vec3{x * 0.55F, 0.1F + lift, 1.25F}, {0.07F, 0.025F, 0.55F},
                               Surface::Plain, Rgb(0x55585C)));
        AddWheel(shapes, at + Vec3{x, 0.3F, 0.35F}, 0.3F);
        AddWheel(shapes, at + Vec3{x, 0.24F, -0.8F}, 0.24F);
    }
    shapes.push_back(Block(at + Vec3{0, 2.17F, -0.2F}, {0.52F, 0.03F, 0.6F}, Surface::Plain, dark));
    PersonLook driver = CommonPerson(7);
    driver.jacket = Rgb(0xE07818);
    driver.height = 1.5F;
    AddPerson(shapes, at + Vec3{0, 0.5F, -0.3F}, 0, 0.15F, driver);
    shapes.push_back(Block(at + Vec3{0, 0.5F + lift, 1.3F}, {0.5F, 0.36F, 0.45F}, Surface::Crates,
                           Rgb(0xB08A58)));
    TurnSince(shapes, from, at, heading);
}

void TurnSince(Shapes& shapes, std::size_t from, const Vec3& pivot, float radians) {
    for (std::size_t i = from; i < shapes.size(); ++i) shapes[i].TurnAbout(pivot, radians);
}

}  // namespace marvolen::scenes
