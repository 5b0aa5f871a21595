// Places with traffic: gate, car park, main street, highway, station.

#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/scene_list.h"
#include "tools/camera_server/scenes/traffic.h"

#include <numbers>

namespace marvolen::scenes {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

const Vec3 kGrass = Rgb(0x586B36);
const Vec3 kLeaves = Rgb(0x5C7838);
const Vec3 kSodium = Rgb(0xFFB45A);

CarLook CarFor(const Brief& brief, std::uint32_t n) {
    CarLook look = CommonCar(brief.seed * 31 + n);
    look.lights = LampsBurn(brief.light);
    return look;
}

PersonLook PersonFor(const Brief& brief, std::uint32_t n) {
    return CommonPerson(brief.seed * 17 + n);
}

float Chance(const Brief& brief, int n, std::uint32_t kind = 0) {
    return HashUnit(n, static_cast<std::int32_t>(brief.seed), kind);
}

void AddTreeLine(Scene& scene, Daylight light, float base, float amplitude) {
    const Vec3 far = light == Daylight::Night  ? Vec3{0.01F, 0.012F, 0.014F}
                     : light == Daylight::Dusk ? Vec3{0.05F, 0.055F, 0.07F}
                                               : Mix(Rgb(0x4C6A3C), scene.sky.horizon * 0.6F, 0.4F);
    Ridge trees{.kind = Ridge::Kind::Trees, .base = base, .amplitude = amplitude, .frequency = 9};
    trees.colour = far;
    scene.sky.ridges.push_back(trees);
}

// Two posts of brick with lamps, and a low wall with a fence beside each.
void AddGatePosts(Scene& scene) {
    const Vec3 brick = Rgb(0x9A5A42);
    for (const float side : {-1.0F, 1.0F}) {
        scene.still.push_back(
            Block({side * 4.3F, 1.15F, 4}, {0.4F, 1.15F, 0.4F}, Surface::Brick, brick));
        scene.still.push_back(
            Block({side * 4.3F, 2.38F, 4}, {0.5F, 0.09F, 0.5F}, Surface::Concrete, Rgb(0xC8C2B4)));
        scene.still.push_back(
            Ball({side * 4.3F, 2.66F, 4}, {0.2F, 0.2F, 0.2F}, Surface::Glowing, Rgb(0xFFF2D0)));
        scene.still.push_back(
            Block({side * 11.7F, 0.45F, 4}, {7.0F, 0.45F, 0.18F}, Surface::Brick, brick));
        for (int i = 0; i < 30; ++i) {
            const float x = side * (4.9F + 0.46F * static_cast<float>(i));
            scene.still.push_back(
                Block({x, 1.35F, 4}, {0.025F, 0.5F, 0.025F}, Surface::Plain, Rgb(0x25282B)));
        }
        scene.still.push_back(
            Block({side * 11.7F, 1.8F, 4}, {7.0F, 0.03F, 0.03F}, Surface::Plain, Rgb(0x25282B)));
    }
}

// The booth beside the drive.
void AddBooth(Scene& scene) {
    scene.still.push_back(
        Block({5.8F, 1.2F, 0.4F}, {1.0F, 1.2F, 1.1F}, Surface::Wood, Rgb(0xC9BFA6)));
    scene.still.push_back(
        Block({4.85F, 1.55F, 0.4F}, {0.1F, 0.45F, 0.8F}, Surface::Glass, Rgb(0x1C2830)));
    scene.still.push_back(
        Block({5.8F, 1.55F, -0.66F}, {0.7F, 0.45F, 0.08F}, Surface::Glass, Rgb(0x1C2830)));
    scene.still.push_back(
        Block({5.8F, 2.46F, 0.4F}, {1.3F, 0.09F, 1.4F}, Surface::Plain, Rgb(0x4A5058)));
    scene.still.push_back(
        Block({3.9F, 0.55F, 1.5F}, {0.18F, 0.55F, 0.18F}, Surface::Paint, Rgb(0xE0B020)));
}

// A gantry with two signs.
void AddGantry(Scene& scene) {
    for (const float x : {-14.6F, 14.6F}) {
        scene.still.push_back(Column({x, 3.6F, 34}, 0.22F, 3.6F, Surface::Plain, Rgb(0x8A8E92)));
    }
    scene.still.push_back(Block({0, 7, 34}, {14.7F, 0.22F, 0.22F}, Surface::Plain, Rgb(0x8A8E92)));
    for (const float x : {-7.5F, 6.8F}) {
        scene.still.push_back(
            Block({x, 6.3F, 33.6F}, {3.6F, 1.15F, 0.08F}, Surface::Plain, Rgb(0xE8EAEC)));
        scene.still.push_back(
            Block({x, 6.3F, 33.5F}, {3.5F, 1.06F, 0.08F}, Surface::Plain, Rgb(0x1A4C94)));
        for (int line = 0; line < 2; ++line) {
            scene.still.push_back(Block({x - 0.6F, 6.7F - 0.75F * static_cast<float>(line), 33.4F},
                                        {1.9F - 0.5F * static_cast<float>(line), 0.15F, 0.03F},
                                        Surface::Plain, Rgb(0xF0F2F4)));
        }
    }
}

// Two tracks on sleepers.
void AddTracks(Scene& scene) {
    for (const float x : {1.4F, 2.85F, 5.9F, 7.35F}) {
        scene.still.push_back(
            Block({x, 0.2F, 40}, {0.04F, 0.08F, 70}, Surface::Paint, Rgb(0x8A7A6C)));
    }
    for (int i = 0; i < 60; ++i) {
        for (const float x : {2.1F, 6.6F}) {
            scene.still.push_back(Block({x, 0.08F, -6 + 0.75F * static_cast<float>(i)},
                                        {1.2F, 0.07F, 0.12F}, Surface::Wood, Rgb(0x6E6256)));
        }
    }
}

void AddBenches(Scene& scene) {
    for (int i = 0; i < 3; ++i) {
        const float z = 2.5F + 9.0F * static_cast<float>(i);
        scene.still.push_back(
            Block({-5.6F, 1.35F, z}, {0.25F, 0.05F, 0.9F}, Surface::Wood, Rgb(0xA87848)));
        scene.still.push_back(
            Block({-5.85F, 1.62F, z}, {0.04F, 0.24F, 0.9F}, Surface::Wood, Rgb(0xA87848)));
        scene.still.push_back(
            Block({-5.6F, 1.12F, z}, {0.2F, 0.2F, 0.7F}, Surface::Plain, Rgb(0x33373A)));
    }
}

// Coach follows coach: after a loop each stands where the next one stood.
void AddTrain(Shapes& moving, float phase, float seconds) {
    const float coach = 15.5F;
    const float coaches = std::max(1.0F, std::round(seconds * 0.55F));
    for (float z = -phase * coaches * coach; z < 130; z += coach) {
        if (z < -coach) continue;
        const Vec3 at{6.6F, 0, z};
        moving.push_back(Block(at + Vec3{0, 1.05F, 0}, {1.4F, 0.5F, coach / 2 - 0.25F},
                               Surface::Paint, Rgb(0x7A1F24)));
        moving.push_back(Block(at + Vec3{0, 2.1F, 0}, {1.36F, 0.55F, coach / 2 - 0.3F},
                               Surface::Glass, Rgb(0x1A1E22)));
        moving.push_back(Block(at + Vec3{0, 2.95F, 0}, {1.4F, 0.32F, coach / 2 - 0.25F},
                               Surface::Paint, Rgb(0xE2DACA)));
        for (int k = 0; k < 7; ++k) {
            moving.push_back(Block(
                at + Vec3{0, 2.1F, -coach / 2 + 0.6F + static_cast<float>(k) * (coach - 1.2F) / 6},
                {1.39F, 0.56F, 0.28F}, Surface::Paint, Rgb(0xE2DACA)));
        }
        moving.push_back(Block(at + Vec3{0, 0.4F, 0}, {1.0F, 0.25F, coach / 2 - 1.5F},
                               Surface::Plain, Rgb(0x1E1E20)));
    }
}

}  // namespace

Scene Gate(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -2.2F, brief.seed);
    scene.eye = {-3.5F, 4.6F, -9.5F};
    scene.target = {0.9F, 0.7F, 3.5F};
    scene.fieldOfView = 62;
    AddTreeLine(scene, brief.light, 0.03F, 0.12F);
    Shape ground = GroundOf(Surface::Street, Rgb(0x5A5A5C), 3.2F);
    scene.still.push_back(ground);

    AddGatePosts(scene);
    Shape lawn = Block({-15, 0.02F, 1}, {11.2F, 0.05F, 40}, Surface::Grass, kGrass);
    lawn.centre.x = -16.0F;
    scene.still.push_back(lawn);
    lawn.centre.x = 16.0F;
    scene.still.push_back(lawn);
    AddBooth(scene);
    AddHouse(scene.still, {-15, 0, 30}, {8, 4.5F, 5}, 3.5F, Rgb(0xD6CBB4), LitWindows(brief.light),
             brief.seed);
    AddHouse(scene.still, {14, 0, 34}, {9, 6.2F, 5}, 0, Rgb(0xB7A58C), LitWindows(brief.light),
             brief.seed + 5);
    for (int i = 0; i < 7; ++i) {
        const float x = (i % 2 ? 1.0F : -1.0F) * (7.5F + 3.6F * static_cast<float>(i / 2));
        AddTree(scene.still, {x, 0, 8 + 5 * Chance(brief, i)}, 5.5F + 3 * Chance(brief, i, 2),
                kLeaves, brief.seed + static_cast<std::uint32_t>(i));
        AddBush(scene.still, {x * 0.95F, 0, 3.0F}, 0.6F, kLeaves * 0.8F,
                brief.seed * 3 + static_cast<std::uint32_t>(i));
    }
    AddCar(scene.still, {-1.4F, 0, 13}, kPi, CarFor(brief, 3));

    const CarLook crossing = CarFor(brief, 1);
    const CarLook waiting = CarFor(brief, 2);
    const PersonLook guard = PersonFor(brief, 1);
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        const float open = Smooth(0.12F, 0.88F, ToAndFro(phase));
        const float rise = open * 1.25F;
        for (int i = 0; i < 8; ++i) {
            const float out = 0.45F + 0.9F * static_cast<float>(i);
            Shape arm = Block({3.8F - out * std::cos(rise), 1 + out * std::sin(rise), 1.5F},
                              {0.45F, 0.055F, 0.04F}, Surface::Paint,
                              i % 2 ? Rgb(0xF0F0EC) : Rgb(0xC01818));
            arm.Tip(-rise);
            moving.push_back(arm);
        }
        AddStander(moving, {4.3F, 0, -1.2F}, -2.2F, phase, guard);
        AddCar(moving, {1.5F, 0, -3.2F + 0.25F * ToAndFro(phase)}, 0, waiting);
        AddCrossTraffic(moving, {21, -46, 46, 13, 0, crossing}, phase, seconds);
    };
    return scene;
}

Scene CarPark(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -2.4F, brief.seed);
    scene.eye = {1.5F, 7.4F, -13};
    scene.target = {-0.8F, 0, 6};
    scene.fieldOfView = 64;
    AddTreeLine(scene, brief.light, 0.02F, 0.1F);
    scene.still.push_back(GroundOf(Surface::CarPark, Rgb(0x68686A)));
    for (int row = 0; row < 15; ++row) {
        for (const float x : {-10.7F, -5.6F, 5.6F, 10.7F}) {
            const int n = row * 4 + static_cast<int>(x);
            if (Chance(brief, n, 3) < 0.3F) continue;
            const float z =
                -7.8F + 2.6F * static_cast<float>(row) + 0.3F * (Chance(brief, n) - 0.5F);
            const bool nose = (x > 0) != (std::abs(x) > 8);
            const float turn = nose ? kPi / 2 : -kPi / 2;
            CarLook look = CommonCar(brief.seed * 131 + static_cast<std::uint32_t>(n + 64));
            AddCar(scene.still, {x, 0, z - 0.0F}, turn + 0.06F * (Chance(brief, n, 1) - 0.5F),
                   look);
        }
    }
    for (const float z : {-3.0F, 12.0F, 27.0F}) {
        for (const float side : {-1.0F, 1.0F}) {
            AddStreetLamp(scene, {side * 14.0F, 0, z}, 6.5F, -side * 1.6F, LampsBurn(brief.light),
                          kSodium);
        }
    }
    Shape hedge = Block({0, 0.5F, 33}, {26, 0.6F, 0.8F}, Surface::Grass, kLeaves * 0.7F);
    scene.still.push_back(hedge);
    AddHouse(scene.still, {-13, 0, 46}, {14, 7.5F, 6}, 0, Rgb(0xC9BEA8), LitWindows(brief.light),
             brief.seed);
    AddHouse(scene.still, {21, 0, 44}, {12, 4.2F, 6}, 0, Rgb(0x8C8F94), LitWindows(brief.light),
             brief.seed + 1);
    for (int i = 0; i < 10; ++i) {
        const float side = i % 2 ? 1.0F : -1.0F;
        AddTree(scene.still, {side * 16.5F, 0, -4 + 4.2F * static_cast<float>(i)},
                5 + 2.5F * Chance(brief, i, 5), kLeaves,
                brief.seed + static_cast<std::uint32_t>(i));
    }
    const CarLook driving = CarFor(brief, 1);
    const CarLook leaving = CarFor(brief, 2);
    const PersonLook shopper = PersonFor(brief, 4);
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        AddTraffic(moving, {1.5F, -15, 31, 46 / seconds, 0, driving}, phase, seconds);
        AddTraffic(moving, {-1.5F, 31, -15, 46 / seconds, 0.45F, leaving}, phase, seconds);
        AddStander(moving, {-3.3F, 0, 0.9F}, 2.0F, phase, shopper);
        AddStander(moving, {3.5F, 0, 8.1F}, -2.6F, phase, CommonPerson(21));
    };
    return scene;
}

Scene MainStreet(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, 0.5F, brief.seed);
    scene.eye = {-4.9F, 5.4F, -9};
    scene.target = {0.6F, 1.1F, 11};
    scene.fieldOfView = 64;
    const bool dark = LampsBurn(brief.light);
    if (brief.light == Daylight::Dusk) scene.weather = Scene::Weather::Rain;
    Shape road = GroundOf(Surface::Street, Rgb(0x4C4D50), 4.4F);
    scene.still.push_back(road);
    Ridge city{.kind = Ridge::Kind::City, .base = 0.06F, .amplitude = 0.14F, .frequency = 16};
    city.colour = Mix(Rgb(0x6C6A70), scene.sky.horizon, 0.4F) * (dark ? 0.12F : 1.0F);
    city.tops = Rgb(0xFFC878);
    city.topShare = LitWindows(brief.light);
    scene.sky.ridges.push_back(city);

    const unsigned walls[] = {0xB89A7C, 0x9C5F4A, 0xC9C0AC, 0x7E8288, 0xA88858, 0x8A6A5C};
    for (const float side : {-1.0F, 1.0F}) {
        float z = -6;
        for (int i = 0; i < 9; ++i) {
            const int n = i * 2 + (side > 0);
            const float deep = 4 + 3 * Chance(brief, n);
            const float tall = 4.2F + 4.5F * Chance(brief, n, 1);
            AddHouse(scene.still, {side * (7.4F + 5), 0, z + deep}, {5, tall, deep}, 0,
                     Rgb(walls[static_cast<unsigned>(n) % 6]), LitWindows(brief.light),
                     brief.seed + static_cast<std::uint32_t>(n) * 7);
            // A shop window at the ground, its lamps on.
            const unsigned glow[] = {0xFFDCA0, 0xFFF0D8, 0xA8D8FF, 0xFFC070};
            scene.still.push_back(Glow({side * 7.38F, 1.35F, z + deep}, {0.05F, 1.0F, deep * 0.82F},
                                       Rgb(glow[n % 4]), dark ? 1.5F : 0.45F));
            const unsigned signs[] = {0xB02020, 0x1F5A38, 0x20407A, 0x6A2A68, 0xC07818};
            scene.still.push_back(Block({side * 7.1F, 2.62F, z + deep}, {0.4F, 0.22F, deep * 0.86F},
                                        Surface::Plain, Rgb(signs[n % 5])));
            if (dark) {
                scene.lamps.push_back({{side * 6.2F, 1.6F, z + deep}, Rgb(glow[n % 4]) * 1.9F, 7});
            }
            z += deep * 2 + 0.05F;
        }
        for (int i = 0; i < 5; ++i) {
            AddStreetLamp(scene, {side * 5.0F, 0, -1 + 13.0F * static_cast<float>(i)}, 5.8F,
                          -side * 1.2F, dark, kSodium);
        }
    }
    for (int i = 0; i < 5; ++i) {
        CarLook parked = CommonCar(brief.seed * 3 + static_cast<std::uint32_t>(i));
        AddCar(scene.still, {3.55F, 0, 6 + 6.3F * static_cast<float>(i)}, 0, parked);
    }
    AddTree(scene.still, {5.9F, 0, 3}, 4.4F, kLeaves, brief.seed);
    AddTree(scene.still, {-5.9F, 0, 16}, 4.8F, kLeaves, brief.seed + 1);
    const CarLook away = CarFor(brief, 1);
    const CarLook towards = CarFor(brief, 2);
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        AddTraffic(moving, {1.25F, -14, 90, 14, 0.2F, away}, phase, seconds);
        AddTraffic(moving, {-1.9F, 90, -14, 13, 0.55F, towards}, phase, seconds);
        // Out of a door and back in.
        const float out = ToAndFro(phase);
        AddPerson(moving, {7.6F - 1.5F * out, 0, 7}, phase < 0.5F ? -kPi / 2 : kPi / 2,
                  phase * 2 * std::round(seconds), PersonFor(brief, 3));
        AddStander(moving, {-6.2F, 0, 4.4F}, 1.9F, phase, CommonPerson(9));
        AddStander(moving, {-6.4F, 0, 5.2F}, 2.9F, phase, CommonPerson(12));
        AddStander(moving, {5.4F, 0, 9.0F}, -1.4F, phase, CommonPerson(14));
    };
    return scene;
}

Scene Highway(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, 2.4F, brief.seed);
    scene.eye = {-2.6F, 8.6F, -16};
    scene.target = {0.8F, 0.4F, 16};
    scene.fieldOfView = 54;
    AddTreeLine(scene, brief.light, 0.012F, 0.05F);
    Ridge hills{.kind = Ridge::Kind::Mountains, .base = 0.02F, .amplitude = 0.07F, .frequency = 2};
    hills.colour = Mix(Rgb(0x6E8272), scene.sky.horizon, 0.5F);
    scene.sky.ridges.insert(scene.sky.ridges.begin(), hills);
    scene.still.push_back(GroundOf(Surface::Motorway, Rgb(0x6E6D6C)));
    const Vec3 steel = Rgb(0xA9ADB0);
    for (const float x : {-14.0F, -0.7F, 0.7F, 14.0F}) {
        scene.still.push_back(Block({x, 0.62F, 90}, {0.04F, 0.16F, 110}, Surface::Plain, steel));
        for (int i = 0; i < 26; ++i) {
            scene.still.push_back(Block({x, 0.3F, -12 + 4.0F * static_cast<float>(i)},
                                        {0.05F, 0.3F, 0.05F}, Surface::Plain, steel * 0.7F));
        }
    }
    AddGantry(scene);
    for (int i = 0; i < 16; ++i) {
        const float side = i % 2 ? 1.0F : -1.0F;
        AddTree(scene.still,
                {side * (19 + 7 * Chance(brief, i)), 0, 2 + 6.5F * static_cast<float>(i)},
                6 + 5 * Chance(brief, i, 1), kLeaves * 0.85F,
                brief.seed + static_cast<std::uint32_t>(i));
    }
    const float seconds = brief.seconds;
    const std::uint32_t seed = brief.seed;
    const bool dark = LampsBurn(brief.light);
    scene.animate = [=](float phase, Shapes& moving) {
        const float lanes[] = {3.3F, 7.0F, 10.7F};
        for (int i = 0; i < 6; ++i) {
            const float x = lanes[i % 3] * (i < 3 ? 1.0F : -1.0F);
            CarLook car = CommonCar(seed * 19 + static_cast<std::uint32_t>(i) * 5);
            if (i % 3 == 2) car.body = CarBody::Lorry;
            car.lights = dark;
            const float speed = 36 - 4.5F * static_cast<float>(i % 3);
            const float offset = static_cast<float>(i) * 0.37F;
            const float near = -22;
            const float far = 190;
            AddTraffic(moving, {x, i < 3 ? near : far, i < 3 ? far : near, speed, offset, car},
                       phase, seconds);
        }
    };
    return scene;
}

Scene Station(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -1.9F, brief.seed);
    scene.eye = {-3.2F, 4.0F, -8};
    scene.target = {1.6F, 1.3F, 8};
    scene.fieldOfView = 66;
    const bool dark = LampsBurn(brief.light);
    AddTreeLine(scene, brief.light, 0.02F, 0.09F);
    scene.still.push_back(GroundOf(Surface::Gravel, Rgb(0x7C7468)));
    // Platform on the left, tracks on the right.
    Shape platform = Block({-4.2F, 0.45F, 30}, {4.7F, 0.45F, 60}, Surface::Tiles, Rgb(0xA8A298));
    scene.still.push_back(platform);
    scene.still.push_back(
        Block({0.05F, 0.905F, 30}, {0.1F, 0.01F, 60}, Surface::Plain, Rgb(0xF0EEE6)));
    scene.still.push_back(
        Block({-0.75F, 0.905F, 30}, {0.16F, 0.008F, 60}, Surface::Plain, Rgb(0xE0B838)));
    AddTracks(scene);
    for (int i = 0; i < 6; ++i) {
        const float z = -1 + 7.0F * static_cast<float>(i);
        scene.still.push_back(Column({-3.4F, 2.6F, z}, 0.14F, 1.8F, Surface::Paint, Rgb(0x2E5A4A)));
        scene.still.push_back(
            Glow({-3.4F, 4.2F, z + 3}, {0.1F, 0.05F, 0.8F}, Rgb(0xFFF4DC), dark ? 5.0F : 1.5F));
        scene.lamps.push_back({{-3.4F, 4.0F, z + 3}, Rgb(0xFFE8C0) * (dark ? 5.0F : 1.2F), 9});
    }
    scene.still.push_back(
        Block({-4.0F, 4.45F, 26}, {3.4F, 0.12F, 32}, Surface::SheetMetal, Rgb(0x9AA0A2)));
    Shape hall = Block({-11, 3, 25}, {2.4F, 3, 36}, Surface::Facade, Rgb(0x9A5E48));
    hall.parameter = dark ? 0.5F : 0.1F;
    scene.still.push_back(hall);
    AddBenches(scene);
    for (int i = 0; i < 8; ++i) {
        AddTree(scene.still, {12 + 4 * Chance(brief, i), 0, 3 + 6.0F * static_cast<float>(i)},
                5 + 4 * Chance(brief, i, 1), kLeaves, brief.seed + static_cast<std::uint32_t>(i));
    }
    const std::uint32_t seed = brief.seed;
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        AddTrain(moving, phase, seconds);
        const float spots[][2] = {{-1.5F, 2.2F}, {-2.0F, 3.0F}, {-1.7F, 8.5F}, {-2.4F, 14.0F}};
        for (int i = 0; i < 4; ++i) {
            AddStander(moving, {spots[i][0], 0.9F, spots[i][1]}, 1.2F + static_cast<float>(i),
                       phase, CommonPerson(seed * 13 + static_cast<std::uint32_t>(i)));
        }
    };
    return scene;
}

}  // namespace marvolen::scenes
