// Places under a roof, and the yard before one: reception, corridor, warehouse, server room,
// loading dock.

#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/scene_list.h"
#include "tools/camera_server/scenes/traffic.h"

#include <numbers>

namespace marvolen::scenes {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

float Chance(const Brief& brief, int n, std::uint32_t kind = 0) {
    return HashUnit(n, static_cast<std::int32_t>(brief.seed), kind);
}

// A room open towards the viewer: floor, ceiling and three walls. The ceiling lets the key light,
// which stands for its lamps, through.
void AddRoom(Scene& scene, float halfWidth, float height, float from, float to, const Vec3& walls,
             const Vec3& ceiling, const Shape& floor) {
    const float middle = (from + to) / 2;
    const float half = (to - from) / 2;
    const auto wall = [&](const Vec3& centre, const Vec3& extent, const Vec3& colour) {
        Shape shape = Block(centre, extent, Surface::Plain, colour);
        shape.castsShadow = false;
        scene.still.push_back(shape);
    };
    wall({-halfWidth - 0.1F, height / 2, middle}, {0.1F, height / 2, half}, walls);
    wall({halfWidth + 0.1F, height / 2, middle}, {0.1F, height / 2, half}, walls);
    wall({0, height / 2, to + 0.1F}, {halfWidth, height / 2, 0.1F}, walls);
    wall({0, height + 0.1F, middle}, {halfWidth, 0.1F, half}, ceiling);
    scene.still.push_back(floor);
}

void AddCeilingLamp(Scene& scene, const Vec3& at, const Vec3& half, const Vec3& colour) {
    scene.still.push_back(Glow(at, half, colour, 4.0F));
    scene.lamps.push_back({at - Vec3{0, 0.3F, 0}, colour * 1.3F, 6});
}

void AddPlant(Shapes& shapes, const Vec3& at, std::uint32_t seed) {
    shapes.push_back(Column(at + Vec3{0, 0.25F, 0}, 0.24F, 0.25F, Surface::Plain, Rgb(0xB8B2A8)));
    for (int i = 0; i < 5; ++i) {
        const float turn = static_cast<float>(i) * 1.26F;
        Shape leaf =
            Ball(at + Vec3{0.22F * std::cos(turn), 0.95F + 0.1F * static_cast<float>(i % 3),
                           0.22F * std::sin(turn)},
                 {0.3F, 0.42F, 0.3F}, Surface::Leaves, Rgb(0x3E7A34));
        leaf.seed = seed + static_cast<std::uint32_t>(i);
        shapes.push_back(leaf);
    }
}

void AddRack(Shapes& shapes, const Vec3& foot, float halfLength, int levels, std::uint32_t seed) {
    const Vec3 blue = Rgb(0x2A4C84);
    const Vec3 orange = Rgb(0xD8701C);
    for (float z = -halfLength; z <= halfLength + 0.1F; z += halfLength / 3) {
        for (const float x : {-0.55F, 0.55F}) {
            shapes.push_back(Block(foot + Vec3{x, static_cast<float>(levels) * 0.95F, z},
                                   {0.06F, static_cast<float>(levels) * 0.95F, 0.06F},
                                   Surface::Plain, blue));
        }
    }
    for (int level = 0; level < levels; ++level) {
        const float y = 0.15F + 1.8F * static_cast<float>(level);
        shapes.push_back(
            Block(foot + Vec3{0, y, 0}, {0.62F, 0.07F, halfLength}, Surface::Plain, orange));
        float z = -halfLength + 0.3F;
        for (int i = 0; z < halfLength - 1.0F; ++i) {
            const float size = 0.5F + 0.35F * HashUnit(i, level, seed);
            const float tall = 0.35F + 0.4F * HashUnit(i, level, seed + 1);
            if (HashUnit(i, level, seed + 2) > 0.13F) {
                Shape crates = Block(foot + Vec3{0, y + 0.07F + tall, z + size},
                                     {0.5F, tall, size * 0.94F}, Surface::Crates, Rgb(0xA88850));
                crates.seed = Hash(i, level, seed);
                shapes.push_back(crates);
            }
            z += size * 2 + 0.12F;
        }
    }
}

// A window front on the right with daylight and a garden behind it.
void AddWindowFront(Scene& scene) {
    for (int i = 0; i < 6; ++i) {
        const float z = -5.6F + 2.5F * static_cast<float>(i);
        scene.still.push_back(Glow({6.42F, 1.75F, z}, {0.04F, 1.35F, 1.12F}, Rgb(0xD4E6F4), 1.25F));
        scene.still.push_back(
            Block({6.36F, 0.95F, z}, {0.05F, 0.5F, 1.12F}, Surface::Grass, Rgb(0x86A85A)));
        scene.lamps.push_back({{5.4F, 1.8F, z}, Rgb(0xE8F2FF) * 1.5F, 5.5F});
        scene.still.push_back(
            Block({6.35F, 1.75F, z + 1.25F}, {0.08F, 1.45F, 0.07F}, Surface::Plain, Rgb(0x50545A)));
    }
}

// The desk with screens and a sign on the wall behind it.
void AddDesk(Scene& scene) {
    scene.still.push_back(
        Block({0.6F, 0.55F, 5.6F}, {2.4F, 0.55F, 0.45F}, Surface::Wood, Rgb(0x8A5A34)));
    scene.still.push_back(
        Block({0.6F, 1.13F, 5.55F}, {2.55F, 0.04F, 0.6F}, Surface::Plain, Rgb(0xE6E2DA)));
    for (const float x : {-0.5F, 1.5F}) {
        Shape screen =
            Block({x, 1.42F, 5.75F}, {0.26F, 0.18F, 0.03F}, Surface::Plain, Rgb(0x202224));
        scene.still.push_back(screen);
    }
    scene.still.push_back(
        Block({0.6F, 2.2F, 8.95F}, {3.2F, 1.0F, 0.1F}, Surface::Wood, Rgb(0x6E4A30)));
    for (int i = 0; i < 7; ++i) {
        scene.still.push_back(Glow({-0.75F + 0.45F * static_cast<float>(i), 2.35F, 8.82F},
                                   {0.13F, 0.22F, 0.03F}, Rgb(0xFFF0D0), 2.0F));
    }
}

// Where on the floor a person can't be seen from eye because of a pillar.
Vec3 HiddenBehind(const Vec3& pillar, const Vec3& eye) {
    const Vec3 way = Normalised({pillar.x - eye.x, 0, pillar.z - eye.z});
    return Vec3{pillar.x, 0, pillar.z} + way * 0.75F;
}

}  // namespace

Scene Reception(const Brief& brief) {
    Scene scene;
    LightRoom(scene, Rgb(0xFFF4E2), 0.78F);
    scene.eye = {-4.4F, 3.0F, -4.6F};
    scene.target = {1.0F, 0.9F, 4.2F};
    scene.fieldOfView = 70;
    Shape floor = GroundOf(Surface::Tiles, Rgb(0xC9C1B2), 0.12F);
    AddRoom(scene, 6.5F, 3.6F, -8, 9, Rgb(0xDDD6C8), Rgb(0xECEAE4), floor);
    AddWindowFront(scene);
    AddDesk(scene);
    for (const float x : {-3.9F, -2.1F}) {
        scene.still.push_back(
            Block({x, 0.3F, 3.4F}, {0.7F, 0.18F, 0.42F}, Surface::Plain, Rgb(0x2F5A6E)));
        scene.still.push_back(
            Block({x, 0.62F, 3.78F}, {0.7F, 0.32F, 0.1F}, Surface::Plain, Rgb(0x2F5A6E)));
    }
    scene.still.push_back(Column({-3.0F, 0.3F, 1.9F}, 0.5F, 0.02F, Surface::Glass, Rgb(0x7A8890)));
    scene.still.push_back(
        Column({-3.0F, 0.15F, 1.9F}, 0.06F, 0.15F, Surface::Plain, Rgb(0x808488)));
    AddPlant(scene.still, {-5.7F, 0, 7.9F}, brief.seed);
    AddPlant(scene.still, {5.5F, 0, 7.9F}, brief.seed + 9);
    AddPlant(scene.still, {-5.3F, 0, 4.4F}, brief.seed + 5);
    // Somebody walks from behind one pillar to behind the other; how far depends on the loop.
    const float reach = std::min(0.75F * brief.seconds, 4.0F);
    const Vec3 pillars[] = {{1.4F - reach, 1.8F, 2.4F}, {1.4F + reach, 1.8F, 2.4F}};
    for (const Vec3& pillar : pillars) {
        scene.still.push_back(Column(pillar, 0.36F, 1.8F, Surface::Concrete, Rgb(0xD0CAC0)));
    }
    const Vec3 left = HiddenBehind(pillars[0], scene.eye);
    const Vec3 right = HiddenBehind(pillars[1], scene.eye);
    for (int i = 0; i < 8; ++i) {
        AddCeilingLamp(scene,
                       {-4.2F + 2.8F * static_cast<float>(i % 4), 3.58F, i < 4 ? 1.5F : 6.0F},
                       {0.5F, 0.02F, 0.5F}, Rgb(0xFFF2DC));
    }
    const float seconds = brief.seconds;
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        AddStander(moving, {0.6F, 0, 6.6F}, kPi, phase, CommonPerson(seed * 3 + 1));
        AddStander(moving, {-0.9F, 0, 4.4F}, 0.3F, phase, CommonPerson(seed * 3 + 2));
        AddWalker(moving, left, right, phase, seconds, CommonPerson(seed * 3 + 3));
        for (const float x : {-0.5F, 1.5F}) {
            moving.push_back(Glow({x, 1.42F, 5.715F}, {0.23F, 0.15F, 0.01F},
                                  Mix(Rgb(0x6AA0D0), Rgb(0x90C0A0), Swing(phase, 2, x)), 0.9F));
        }
    };
    return scene;
}

Scene Corridor(const Brief& brief) {
    Scene scene;
    LightRoom(scene, Rgb(0xF0F6FF), 0.55F);
    scene.eye = {-0.95F, 2.55F, -3.4F};
    scene.target = {0.25F, 0.95F, 5};
    scene.fieldOfView = 68;
    Shape floor = GroundOf(Surface::Tiles, Rgb(0x8FA0A4), 0.18F);
    AddRoom(scene, 1.6F, 2.8F, -5, 26, Rgb(0xD8D8CC), Rgb(0xE8EAEA), floor);
    for (const float side : {-1.0F, 1.0F}) {
        scene.still.push_back(
            Block({side * 1.57F, 0.5F, 10}, {0.04F, 0.5F, 16}, Surface::Plain, Rgb(0x6E8C8A)));
        scene.still.push_back(
            Block({side * 1.55F, 1.03F, 10}, {0.07F, 0.05F, 16}, Surface::Wood, Rgb(0xA07A50)));
        for (int i = 0; i < 6; ++i) {
            const float z = 0.6F + 4.2F * static_cast<float>(i) + (side > 0 ? 1.4F : 0.0F);
            scene.still.push_back(Block({side * 1.58F, 1.08F, z}, {0.06F, 1.08F, 0.56F},
                                        Surface::Plain, Rgb(0xE6E4DE)));
            scene.still.push_back(Block({side * 1.55F, 1.03F, z}, {0.05F, 1.03F, 0.48F},
                                        Surface::Wood, Rgb(0x9A6A40)));
            scene.still.push_back(Block({side * 1.5F, 1.02F, z - 0.36F}, {0.05F, 0.03F, 0.08F},
                                        Surface::Paint, Rgb(0xC8CACC)));
            scene.still.push_back(Block({side * 1.53F, 1.6F, z + 0.85F}, {0.02F, 0.1F, 0.14F},
                                        Surface::Plain, Rgb(0x2A4A70)));
        }
    }
    for (int i = 0; i < 9; ++i) {
        AddCeilingLamp(scene, {0, 2.79F, -1 + 3.0F * static_cast<float>(i)}, {0.28F, 0.02F, 0.6F},
                       Rgb(0xF4F8FF));
    }
    scene.still.push_back(Glow({0, 1.4F, 25.9F}, {1.0F, 1.2F, 0.05F}, Rgb(0xCFE4F6), 1.3F));
    scene.still.push_back(Glow({0.2F, 2.45F, 14}, {0.32F, 0.13F, 0.03F}, Rgb(0x30B860), 1.6F));
    scene.still.push_back(
        Column({-1.42F, 0.55F, 3.1F}, 0.1F, 0.26F, Surface::Paint, Rgb(0xB81C1C)));
    scene.still.push_back(
        Block({1.3F, 0.42F, 7.0F}, {0.26F, 0.42F, 0.55F}, Surface::SheetMetal, Rgb(0x9AA2A8)));
    AddPlant(scene.still, {-1.2F, 0, 8.8F}, brief.seed);
    const float seconds = brief.seconds;
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        // From door to door across the corridor.
        AddWalker(moving, {-1.75F, 0, 4.8F}, {1.75F, 0, 5.6F}, phase, seconds,
                  CommonPerson(seed * 7 + 1));
        AddStander(moving, {0.9F, 0, 11.6F}, 2.6F, phase, CommonPerson(seed * 7 + 2));
        AddStander(moving, {0.3F, 0, 12.2F}, 1.2F, phase, CommonPerson(seed * 7 + 3));
    };
    return scene;
}

Scene Warehouse(const Brief& brief) {
    Scene scene;
    LightRoom(scene, Rgb(0xFFF0D6), 0.6F);
    scene.eye = {-1.9F, 5.2F, -7.5F};
    scene.target = {0.3F, 1.5F, 6};
    scene.fieldOfView = 62;
    Shape floor = GroundOf(Surface::Concrete, Rgb(0x9A968E), 0.05F);
    AddRoom(scene, 11, 8.5F, -12, 32, Rgb(0xB8B6AE), Rgb(0x8C8E90), floor);
    for (const float x : {-8.6F, -4.2F, 4.2F, 8.6F}) {
        AddRack(scene.still, {x, 0, 10}, 13, 4, brief.seed + static_cast<std::uint32_t>(x + 20));
    }
    for (const float x : {-1.9F, 1.9F}) {
        scene.still.push_back(
            Block({x, 0.006F, 8}, {0.06F, 0.006F, 18}, Surface::Plain, Rgb(0xE0B428)));
    }
    for (int i = 0; i < 10; ++i) {
        AddCeilingLamp(scene, {i % 2 ? 2.2F : -2.2F, 7.6F, -4 + 6.0F * static_cast<float>(i / 2)},
                       {0.35F, 0.05F, 1.1F}, Rgb(0xFFEED0));
        scene.lamps.back().reach = 12;
        scene.lamps.back().colour = Rgb(0xFFEED0) * 3.0F;
    }
    for (int i = 0; i < 6; ++i) {
        scene.still.push_back(Block({0, 8.2F, -6 + 7.0F * static_cast<float>(i)},
                                    {11, 0.25F, 0.15F}, Surface::Plain, Rgb(0x5C6268)));
    }
    scene.still.push_back(
        Block({0, 2.2F, 31.8F}, {2.4F, 2.2F, 0.1F}, Surface::SheetMetal, Rgb(0xA8B0B4)));
    for (int i = 0; i < 4; ++i) {
        scene.still.push_back(Block(
            {2.6F - 0.06F * static_cast<float>(i), 0.09F + 0.17F * static_cast<float>(i), -1.2F},
            {0.55F, 0.07F, 0.45F}, Surface::Wood, Rgb(0xB08A58)));
    }
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        const float drive = ToAndFro(phase);
        AddForklift(moving, {-0.7F, 0, 3.2F + 2.6F * drive}, 0.12F,
                    0.2F + 1.1F * Smooth(0.6F, 1.0F, drive), Rgb(0xE8A818));
        PersonLook worker = CommonPerson(seed);
        worker.jacket = Rgb(0xE8D020);
        AddStander(moving, {1.5F, 0, 2.4F}, -1.2F, phase, worker);
        worker.jacket = Rgb(0xE07018);
        AddPerson(moving, {0.9F + 0.5F * ToAndFro(phase), 0, 14}, phase < 0.5F ? kPi / 2 : -kPi / 2,
                  phase * 4, worker);
    };
    return scene;
}

Scene ServerRoom(const Brief& brief) {
    Scene scene;
    LightRoom(scene, Rgb(0xDCEBFF), 0.42F);
    scene.eye = {-0.7F, 2.65F, -3.6F};
    scene.target = {0.2F, 0.95F, 4};
    scene.fieldOfView = 70;
    Shape floor = GroundOf(Surface::Tiles, Rgb(0xB4BCC2), 0.14F);
    AddRoom(scene, 2.6F, 3.0F, -5, 14, Rgb(0xC4CCD2), Rgb(0xD8DCE0), floor);
    for (const float side : {-1.0F, 1.0F}) {
        for (int i = 0; i < 12; ++i) {
            const float z = -1.4F + 0.86F * static_cast<float>(i);
            Shape rack = Block({side * 1.75F, 1.08F, z}, {0.55F, 1.08F, 0.41F}, Surface::Leds,
                               Chance(brief, i, side > 0) > 0.75F ? Rgb(0x3A3E44) : Rgb(0x24272B));
            rack.seed = brief.seed * 64 + static_cast<std::uint32_t>(i * 2 + (side > 0));
            scene.still.push_back(rack);
        }
        scene.still.push_back(
            Block({side * 1.4F, 2.55F, 4}, {0.22F, 0.05F, 8}, Surface::Plain, Rgb(0x8A9096)));
        for (int k = 0; k < 4; ++k) {
            const unsigned cables[] = {0x2A62B8, 0xD8B020, 0xB03030, 0x3A8A50};
            scene.still.push_back(Block({side * (1.28F + 0.07F * static_cast<float>(k)), 2.63F, 4},
                                        {0.03F, 0.03F, 8}, Surface::Plain, Rgb(cables[k])));
        }
    }
    for (int i = 0; i < 6; ++i) {
        AddCeilingLamp(scene, {0, 2.99F, -1.5F + 2.6F * static_cast<float>(i)},
                       {0.16F, 0.02F, 0.9F}, Rgb(0xE8F2FF));
    }
    scene.still.push_back(Glow({0, 2.0F, 13.95F}, {0.5F, 0.25F, 0.03F}, Rgb(0x2080E0), 1.2F));
    scene.still.push_back(
        Block({0.1F, 1.05F, 13.9F}, {0.55F, 1.05F, 0.06F}, Surface::Plain, Rgb(0x5A6670)));
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        // Activity lights: each blinks in its own rhythm.
        for (int i = 0; i < 90; ++i) {
            const float side = i % 2 ? 1.0F : -1.0F;
            const float blink =
                Swing(phase, 1 + static_cast<int>(Hash(i, 1, seed) % 7), HashUnit(i, 2, seed));
            if (blink < 0.5F) continue;
            const unsigned colours[] = {0x50FF70, 0x50FF70, 0x60B0FF, 0xFFB030};
            moving.push_back(Glow({side * 1.19F, 0.25F + 1.75F * HashUnit(i, 3, seed),
                                   -1.6F + 9.6F * HashUnit(i, 4, seed)},
                                  {0.012F, 0.018F, 0.035F}, Rgb(colours[Hash(i, 5, seed) % 4]),
                                  3.0F));
        }
        AddStander(moving, {0.35F, 0, 4.3F}, 1.3F, phase, CommonPerson(seed * 11 + 4));
    };
    return scene;
}

Scene LoadingDock(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -2.0F, brief.seed);
    scene.eye = {-7.5F, 5.4F, -10.5F};
    scene.target = {0.4F, 1.2F, 3};
    scene.fieldOfView = 62;
    const bool dark = LampsBurn(brief.light);
    scene.still.push_back(GroundOf(Surface::Asphalt, Rgb(0x6A6866)));
    scene.still.push_back(Block({0, 3.4F, 12}, {30, 3.4F, 4}, Surface::SheetMetal, Rgb(0xA9B0B2)));
    scene.still.push_back(
        Block({0, 6.4F, 7.98F}, {30, 0.4F, 0.05F}, Surface::Plain, Rgb(0x2A5A8C)));
    scene.still.push_back(
        Block({0, 0.55F, 7.2F}, {30, 0.55F, 0.9F}, Surface::Concrete, Rgb(0xA6A298)));
    for (int i = 0; i < 7; ++i) {
        const float x = -11.4F + 4.4F * static_cast<float>(i);
        const bool open = i == 2 || i == 4;
        scene.still.push_back(
            Block({x, 2.6F, 7.96F}, {1.6F, 1.65F, 0.08F}, Surface::Plain, Rgb(0x26282A)));
        if (open) {
            scene.still.push_back(
                Glow({x, 2.3F, 7.9F}, {1.25F, 1.2F, 0.04F}, Rgb(0xFFE2AC), 0.55F));
            scene.lamps.push_back({{x, 2.5F, 6.9F}, Rgb(0xFFDCA0) * (dark ? 3.0F : 0.8F), 6});
        } else {
            scene.still.push_back(Block({x, 2.35F, 7.88F}, {1.28F, 1.25F, 0.05F},
                                        Surface::SheetMetal, Rgb(0xD2D4D0)));
        }
        scene.still.push_back(
            Block({x, 4.9F, 7.95F}, {0.4F, 0.4F, 0.05F}, Surface::Plain, Rgb(0xE8C020)));
        scene.still.push_back(
            Block({x, 4.6F, 7.7F}, {0.2F, 0.06F, 0.3F}, Surface::Plain, Rgb(0x404448)));
        if (dark) scene.lamps.push_back({{x, 4.4F, 7.2F}, Rgb(0xFFC070) * 3.5F, 9});
        for (const float bumper : {-1.0F, 1.0F}) {
            scene.still.push_back(Block({x + bumper, 0.8F, 6.25F}, {0.12F, 0.25F, 0.1F},
                                        Surface::Plain, Rgb(0x1C1C1C)));
        }
        for (const float line : {-1.9F, 1.9F}) {
            scene.still.push_back(
                Block({x + line, 0.006F, 1}, {0.06F, 0.006F, 5}, Surface::Plain, Rgb(0xD8B020)));
        }
    }
    const CarLook lorry{CarBody::Lorry, Rgb(0x2A5A9A), dark};
    AddCar(scene.still, {6.2F, 0, 1.9F}, kPi, lorry);
    AddCar(scene.still, {-11.4F, 0, 1.9F}, kPi, {CarBody::Lorry, Rgb(0xB02A22), false});
    AddCar(scene.still, {10.6F, 0, 2.6F}, kPi, {CarBody::Van, Rgb(0xE8E8E4), false});
    for (int i = 0; i < 5; ++i) {
        Shape crates = Block(
            {-4.2F + 0.2F * static_cast<float>(i % 2), 0.36F + 0.72F * static_cast<float>(i / 3),
             4.4F - 1.15F * static_cast<float>(i % 3)},
            {0.5F, 0.36F, 0.5F}, Surface::Crates, Rgb(0xA88850));
        crates.seed = brief.seed + static_cast<std::uint32_t>(i) * 3;
        scene.still.push_back(crates);
    }
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        const float drive = ToAndFro(phase);
        AddForklift(moving, {-0.6F + 2.4F * drive, 0, 2.3F}, kPi / 2, 0.15F + 0.25F * drive,
                    Rgb(0xE8A010));
        PersonLook worker = CommonPerson(seed + 5);
        worker.jacket = Rgb(0xE8D818);
        AddStander(moving, {-3.2F, 0, 0.6F}, 1.2F, phase, worker);
        worker.jacket = Rgb(0xE86A10);
        AddStander(moving, {-2.6F, 1.1F, 7.0F}, 2.8F, phase, worker);
    };
    return scene;
}

}  // namespace marvolen::scenes
