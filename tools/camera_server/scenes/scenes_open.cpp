// Places with a wide view: garden, skyline, back yard.

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

Vec3 Distant(const Scene& scene, const Brief& brief, unsigned colour, float haze) {
    const float dim = brief.light == Daylight::Night  ? 0.02F
                      : brief.light == Daylight::Dusk ? 0.12F
                                                      : 1.0F;
    return Mix(Rgb(colour) * dim, scene.sky.horizon * 0.8F, haze);
}

// Flowers along both sides of the path.
void AddFlowerBeds(Scene& scene, const Brief& brief) {
    for (int i = 0; i < 22; ++i) {
        const float z = -4.5F + 0.85F * static_cast<float>(i / 2);
        const float x = 1.3F * std::sin(z * 0.16F) + (i % 2 ? 2.1F : -2.1F);
        AddBush(scene.still, {x, 0, z}, 0.42F, Rgb(0x4C6C38),
                brief.seed * 5 + static_cast<std::uint32_t>(i));
        const unsigned petals[] = {0xE84A6A, 0xF2C230, 0xF4F0F0, 0x9A5AC8, 0xE8742A};
        for (int k = 0; k < 7; ++k) {
            scene.still.push_back(Ball({x + 0.7F * (Chance(brief, i * 9 + k) - 0.5F),
                                        0.42F + 0.18F * Chance(brief, i * 9 + k, 2),
                                        z + 0.6F * (Chance(brief, i * 9 + k, 3) - 0.5F)},
                                       {0.07F, 0.06F, 0.07F}, Surface::Plain,
                                       Rgb(petals[Hash(i / 2, 1, brief.seed) % 5])));
        }
    }
}

// A shed with a door and a window.
void AddShed(Scene& scene) {
    scene.still.push_back(Block({5.6F, 1.2F, 6}, {1.9F, 1.2F, 1.5F}, Surface::Wood, Rgb(0x8A6A48)));
    Shape roof = Block({5.6F, 2.9F, 6}, {2.2F, 0.55F, 1.8F}, Surface::RoofTiles, Rgb(0x6A6664));
    roof.taperZ = 0.95F;
    scene.still.push_back(roof);
    scene.still.push_back(
        Block({5.0F, 1.0F, 4.48F}, {0.5F, 1.0F, 0.05F}, Surface::Wood, Rgb(0xC8B898)));
    scene.still.push_back(
        Block({6.5F, 1.4F, 4.47F}, {0.4F, 0.35F, 0.05F}, Surface::Glass, Rgb(0x202428)));
}

void AddCityBlocks(Scene& scene, const Brief& brief) {
    const bool dark = LampsBurn(brief.light);
    const unsigned walls[] = {0x8A8078, 0xA88A70, 0x70787E, 0xB0A898, 0x586068, 0x946050};
    for (int row = 0; row < 7; ++row) {
        for (int i = -4; i < 5; ++i) {
            const int n = row * 16 + i + 4;
            const float z = 16 + 21.0F * static_cast<float>(row);
            const float x =
                (i < 0 ? -1.0F : 1.0F) * (15.0F + 19.0F * static_cast<float>(i < 0 ? -i - 1 : i));
            const float tall =
                5.5F + 12 * Chance(brief, n) * Chance(brief, n, 1) + (row > 3 ? 4.0F : 0.0F);
            AddHouse(scene.still, {x, 0, z}, {7.5F, tall, 8}, 0,
                     Rgb(walls[Hash(n, 2, brief.seed) % 6]) * (dark ? 0.8F : 1.0F),
                     LitWindows(brief.light), brief.seed + static_cast<std::uint32_t>(n) * 3);
            if (Chance(brief, n, 4) > 0.5F) {
                scene.still.push_back(Block({x + 3, tall * 2 + 1.2F, z - 3}, {1.6F, 1.1F, 1.6F},
                                            Surface::Concrete, Rgb(0x8A8A88)));
            }
        }
    }
}

}  // namespace

Scene Garden(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -2.3F, brief.seed);
    scene.eye = {-3.4F, 3.9F, -9.5F};
    scene.target = {0.5F, 1.2F, 4};
    scene.fieldOfView = 60;
    scene.still.push_back(GroundOf(Surface::Path, Rgb(0x5A7038)));
    Ridge wood{.kind = Ridge::Kind::Trees, .base = 0.05F, .amplitude = 0.16F, .frequency = 8};
    wood.colour = Distant(scene, brief, 0x47683A, 0.2F);
    scene.sky.ridges.push_back(wood);
    const unsigned greens[] = {0x5C7A38, 0x78883E, 0x456838, 0x848240, 0x96603A};
    for (int i = 0; i < 12; ++i) {
        const float side = i % 2 ? 1.0F : -1.0F;
        AddTree(scene.still,
                {side * (5.5F + 6 * Chance(brief, i)), 0, 2.5F + 2.6F * static_cast<float>(i)},
                4.5F + 3.5F * Chance(brief, i, 1), Rgb(greens[Hash(i, 3, brief.seed) % 5]),
                brief.seed + static_cast<std::uint32_t>(i));
    }
    AddFlowerBeds(scene, brief);
    AddHouse(scene.still, {5.2F, 0, 24}, {5.5F, 2.9F, 3.5F}, 3.2F, Rgb(0xE4DCC8),
             LitWindows(brief.light) + 0.02F, brief.seed + 3);
    // A fountain on the lawn.
    const Vec3 basin{4.6F, 0, 4.2F};
    scene.still.push_back(
        Column(basin + Vec3{0, 0.25F, 0}, 1.5F, 0.25F, Surface::Concrete, Rgb(0xB8B2A6)));
    scene.still.push_back(
        Column(basin + Vec3{0, 0.49F, 0}, 1.32F, 0.03F, Surface::Glass, Rgb(0x2A4A58)));
    scene.still.push_back(
        Column(basin + Vec3{0, 0.7F, 0}, 0.14F, 0.5F, Surface::Concrete, Rgb(0xB8B2A6)));
    scene.still.push_back(
        Column(basin + Vec3{0, 1.2F, 0}, 0.5F, 0.06F, Surface::Concrete, Rgb(0xB8B2A6)));
    scene.still.push_back(
        Block({-3.6F, 0.45F, 1.6F}, {0.8F, 0.04F, 0.22F}, Surface::Wood, Rgb(0xA87A48)));
    scene.still.push_back(
        Block({-3.6F, 0.75F, 1.85F}, {0.8F, 0.2F, 0.03F}, Surface::Wood, Rgb(0xA87A48)));
    for (const float x : {-4.3F, -2.9F}) {
        scene.still.push_back(
            Block({x, 0.22F, 1.65F}, {0.04F, 0.22F, 0.2F}, Surface::Plain, Rgb(0x303030)));
    }
    const std::uint32_t seed = brief.seed;
    scene.animate = [=](float phase, Shapes& moving) {
        // Drops rise and fall once a loop, each at its own moment.
        for (int i = 0; i < 130; ++i) {
            float t = phase * 2 + HashUnit(i, 1, 3);
            t -= std::floor(t);
            const float turn = HashUnit(i, 2, 3) * 2 * kPi;
            const float out = (0.25F + 0.5F * HashUnit(i, 3, 3)) * t;
            Shape drop = Ball(basin + Vec3{out * std::cos(turn), 1.25F + 3.4F * t - 4.1F * t * t,
                                           out * std::sin(turn)},
                              {0.022F, 0.05F, 0.022F}, Surface::Plain, Rgb(0xF4FAFF));
            drop.castsShadow = false;
            moving.push_back(drop);
        }
        AddStander(moving, {-1.6F, 0, 5.4F}, 2.4F, phase, CommonPerson(seed * 5 + 1));
        AddStander(moving, {2.6F, 0, 3.0F}, 0.9F, phase, CommonPerson(seed * 5 + 2));
        // A dog that runs out and back.
        const float run = ToAndFro(phase);
        const Vec3 dog{-0.5F + 1.6F * run, 0, 1.2F};
        const Vec3 fur = Rgb(0x8A5A2C);
        const float face = phase < 0.5F ? 1.0F : -1.0F;
        moving.push_back(Ball(dog + Vec3{0, 0.42F + 0.04F * Swing(phase, 4), 0},
                              {0.34F, 0.15F, 0.13F}, Surface::Plain, fur));
        moving.push_back(
            Ball(dog + Vec3{face * 0.4F, 0.58F, 0}, {0.14F, 0.11F, 0.1F}, Surface::Plain, fur));
        for (const float x : {-0.24F, 0.24F}) {
            moving.push_back(Block(dog + Vec3{x + 0.08F * (Swing(phase, 4, x) - 0.5F), 0.17F, 0},
                                   {0.04F, 0.17F, 0.08F}, Surface::Plain, fur * 0.8F));
        }
    };
    return scene;
}

Scene Skyline(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, 0.55F, brief.seed);
    scene.eye = {0, 34, -20};
    scene.target = {2, 30.5F, 10};
    scene.fieldOfView = 58;
    const bool dark = LampsBurn(brief.light);
    if (dark) scene.exposure = 1.5F;
    Shape streets = GroundOf(Surface::Street, Rgb(0x4A4A4C), 5);
    scene.still.push_back(streets);
    for (int layer = 0; layer < 2; ++layer) {
        Ridge city{.kind = Ridge::Kind::City,
                   .base = layer ? 0.0F : 0.02F,
                   .amplitude = layer ? 0.12F : 0.2F,
                   .frequency = layer ? 26.0F : 15.0F};
        city.colour = Distant(scene, brief, layer ? 0x6A6C78 : 0x8A8C9A, layer ? 0.2F : 0.4F);
        city.tops = Rgb(0xFFC470) * (dark ? 0.9F : 0.6F);
        city.topShare = 0.05F + LitWindows(brief.light);
        scene.sky.ridges.push_back(city);
    }
    AddCityBlocks(scene, brief);
    for (int i = 0; i < 9; ++i) {
        const Vec3 at{i % 2 ? 6.2F : -6.2F, 4, 10 + 17.0F * static_cast<float>(i)};
        if (dark) {
            scene.still.push_back(Glow(at, {0.3F, 0.2F, 0.3F}, Rgb(0xFFB050), 5));
            scene.lamps.push_back({at, Rgb(0xFFA848) * 16.0F, 24});
        }
    }
    // The roof the camera stands on.
    scene.still.push_back(
        Block({0, 30.2F, -13}, {30, 0.25F, 0.3F}, Surface::Concrete, Rgb(0x8A8884)));
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        AddTraffic(moving, {2.5F, -10, 230, 17, 0.1F, {CarBody::Saloon, Rgb(0x404448), dark}},
                   phase, seconds);
        AddTraffic(moving, {-2.5F, 230, -10, 15, 0.6F, {CarBody::Saloon, Rgb(0xC0C4C8), dark}},
                   phase, seconds);
        for (int i = 0; i < 5; ++i) {
            if (Swing(phase, 1, static_cast<float>(i) * 0.3F) < 0.5F) continue;
            moving.push_back(
                Glow({-30 + 17.0F * static_cast<float>(i), 36 + 3 * Chance(brief, i, 9),
                      120 + 14.0F * static_cast<float>(i % 3)},
                     {0.35F, 0.35F, 0.35F}, Rgb(0xFF2818), 4));
        }
        // An aircraft crosses far away, its strobe flashing.
        const Vec3 plane{-90 + 180 * phase, 78 + 8 * phase, 200};
        moving.push_back(Glow(plane, {0.5F, 0.3F, 0.3F}, Rgb(0xFFF8E8), 2.5F));
        if (Swing(phase, 3) > 0.7F) {
            moving.push_back(Glow(plane - Vec3{1.6F, 0, 0}, {0.4F, 0.4F, 0.4F}, Rgb(0xFF3020), 6));
        }
    };
    return scene;
}

Scene BackYard(const Brief& brief) {
    Scene scene;
    LightUp(scene, Daylight::Night, 0.9F, brief.seed);
    scene.infrared = true;
    scene.sky.disc = 0;
    scene.sky.stars = 0.25F;
    scene.sky.clouds = 0;
    scene.exposure = 1.1F;
    scene.noise = 6.5F;
    scene.eye = {-2.8F, 3.4F, -7.5F};
    scene.target = {0.6F, 0.5F, 3};
    scene.fieldOfView = 66;
    scene.weather = Scene::Weather::Snow;
    // The camera lights the yard itself: from where it stands, weaker with distance.
    scene.keyDirection = Normalised(Vec3{-0.62F, 0.62F, -0.8F});
    scene.keyColour = {0.22F, 0.22F, 0.22F};
    scene.lamps.push_back({scene.eye + Vec3{0.1F, 0.2F, 0}, Vec3{34, 34, 34}, 34});
    scene.fogDistance = 60;
    scene.still.push_back(GroundOf(Surface::Path, Rgb(0x8AA070)));
    for (int i = 0; i < 64; ++i) {
        scene.still.push_back(Block({-13 + 0.42F * static_cast<float>(i), 0.95F, 9.5F},
                                    {0.17F, 0.95F, 0.03F}, Surface::Wood, Rgb(0xA89878)));
    }
    scene.still.push_back(
        Block({0, 1.5F, 9.56F}, {14, 0.06F, 0.04F}, Surface::Wood, Rgb(0xA89878)));
    AddShed(scene);
    AddTree(scene.still, {-6.2F, 0, 5}, 6, Rgb(0x8A9A60), brief.seed);
    AddTree(scene.still, {1.5F, 0, 13}, 7, Rgb(0x8A9A60), brief.seed + 1);
    AddTree(scene.still, {-3.5F, 0, 14}, 6, Rgb(0x8A9A60), brief.seed + 2);
    for (int i = 0; i < 6; ++i) {
        AddBush(scene.still, {-6 + 2.2F * static_cast<float>(i), 0, 8.6F}, 0.6F, Rgb(0x8A9A60),
                brief.seed + 10 + static_cast<std::uint32_t>(i));
    }
    for (const float x : {2.6F, 3.3F}) {
        scene.still.push_back(Column({x, 0.55F, 4.2F}, 0.3F, 0.55F, Surface::Plain, Rgb(0x5A6A60)));
    }
    scene.still.push_back(
        Block({-2.8F, 0.7F, 3.6F}, {0.9F, 0.04F, 0.5F}, Surface::Wood, Rgb(0xA08058)));
    for (const float x : {-3.5F, -2.1F}) {
        scene.still.push_back(
            Block({x, 0.35F, 3.6F}, {0.05F, 0.35F, 0.4F}, Surface::Wood, Rgb(0xA08058)));
    }
    scene.animate = [](float phase, Shapes& moving) {
        // A fox noses about; its eyes give the light back.
        const Vec3 fur = Rgb(0xB0A088);
        const float step = ToAndFro(phase);
        const Vec3 fox{0.3F + 0.7F * step, 0, 2.4F};
        const float face = phase < 0.5F ? 1.0F : -1.0F;
        moving.push_back(Ball(fox + Vec3{0, 0.36F, 0}, {0.36F, 0.13F, 0.12F}, Surface::Plain, fur));
        moving.push_back(Ball(fox + Vec3{-face * 0.55F, 0.36F, 0}, {0.28F, 0.08F, 0.08F},
                              Surface::Plain, fur * 1.2F));
        const float nod = 0.1F * Swing(phase, 2);
        moving.push_back(Ball(fox + Vec3{face * 0.42F, 0.44F - nod, -0.03F}, {0.15F, 0.1F, 0.09F},
                              Surface::Plain, fur));
        for (const float z : {-0.07F, 0.03F}) {
            moving.push_back(Glow(fox + Vec3{face * 0.5F, 0.47F - nod, z - 0.05F},
                                  {0.022F, 0.022F, 0.022F}, {1, 1, 1}, 6));
        }
        for (int i = 0; i < 4; ++i) {
            const float x = -0.26F + 0.17F * static_cast<float>(i);
            moving.push_back(Block(fox + Vec3{x + 0.06F * (Swing(phase, 2, x * 2) - 0.5F), 0.14F,
                                              i % 2 ? 0.06F : -0.06F},
                                   {0.025F, 0.14F, 0.025F}, Surface::Plain, fur * 0.7F));
        }
    };
    return scene;
}

}  // namespace marvolen::scenes
