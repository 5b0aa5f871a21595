// Places with a wide view: harbour, garden, skyline, back yard, lake, lighthouse.

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

// A gull: two wings that beat, a body.
void AddBird(Shapes& shapes, const Vec3& at, float heading, float beat, float span) {
    const std::size_t from = shapes.size();
    const float angle = 0.55F * std::sin(beat * 2 * kPi);
    for (const float side : {-1.0F, 1.0F}) {
        Shape wing = Block(
            at + Vec3{side * span * 0.24F * std::cos(angle), span * 0.24F * std::sin(angle), 0},
            {span * 0.25F, 0.02F, span * 0.09F}, Surface::Plain, Rgb(0xB8BCC0));
        wing.castsShadow = false;
        wing.Tip(side * angle);
        shapes.push_back(wing);
    }
    Shape body =
        Ball(at, {span * 0.05F, span * 0.05F, span * 0.17F}, Surface::Plain, Rgb(0xE4E4E0));
    body.castsShadow = false;
    shapes.push_back(body);
    TurnSince(shapes, from, at, heading);
}

void AddGulls(Shapes& moving, const Vec3& centre, float radius, float phase, int count,
              float seconds) {
    for (int i = 0; i < count; ++i) {
        // A whole circle would be too quick for a short loop: they take each other's places.
        const float turn = (static_cast<float>(i) + phase) / static_cast<float>(count) * 2 * kPi;
        const Vec3 at = centre + Vec3{radius * std::cos(turn), 0.25F * radius * std::sin(2 * turn),
                                      radius * std::sin(turn)};
        AddBird(moving, at, kPi - turn, phase * std::max(1.0F, std::round(seconds * 2)), 1.3F);
    }
}

void AddJetty(Shapes& shapes, float x, float from, float to, float height) {
    shapes.push_back(Block({x, height, (from + to) / 2}, {0.9F, 0.07F, (to - from) / 2},
                           Surface::Wood, Rgb(0x9A7A58)));
    for (float z = from; z <= to; z += 2.4F) {
        for (const float side : {-0.85F, 0.85F}) {
            shapes.push_back(
                Column({x + side, height - 0.3F, z}, 0.11F, 0.9F, Surface::Wood, Rgb(0x5E4A38)));
        }
    }
}

}  // namespace

Scene Harbour(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, 0.42F, brief.seed);
    scene.eye = {-2.5F, 4.2F, -12};
    scene.target = {0.8F, 1.9F, 8};
    scene.fieldOfView = 62;
    const bool dark = LampsBurn(brief.light);
    scene.still.push_back(GroundOf(Surface::Water, Rgb(0x2A4A54)));
    Ridge hills{
        .kind = Ridge::Kind::Mountains, .base = 0.03F, .amplitude = 0.13F, .frequency = 2.2F};
    hills.colour = Distant(scene, brief, 0x5A6478, 0.45F);
    scene.sky.ridges.push_back(hills);
    Ridge town{.kind = Ridge::Kind::City, .base = 0.012F, .amplitude = 0.06F, .frequency = 34};
    town.colour = Distant(scene, brief, 0x8A7468, 0.25F);
    town.tops = Rgb(0xFFCC80);
    town.topShare = 0.12F + LitWindows(brief.light);
    scene.sky.ridges.push_back(town);

    // The quay and what stands on it.
    scene.still.push_back(
        Block({-13.2F, 0.5F, 6}, {6, 0.9F, 34}, Surface::Concrete, Rgb(0x9C968A)));
    for (int i = 0; i < 4; ++i) {
        const unsigned walls[] = {0xB0543C, 0xD8C9A0, 0x6C8698, 0xC89858};
        const float z = 4 + 7.4F * static_cast<float>(i);
        AddHouse(scene.still, {-15.2F, 1.4F, z}, {3, 2.4F + 0.5F * Chance(brief, i), 3.4F}, 2.4F,
                 Rgb(walls[i]), LitWindows(brief.light) + 0.1F,
                 brief.seed + static_cast<std::uint32_t>(i));
    }
    for (int i = 0; i < 5; ++i) {
        scene.still.push_back(Column({-7.6F, 1.65F, -2 + 5.0F * static_cast<float>(i)}, 0.16F,
                                     0.28F, Surface::Plain, Rgb(0x2A2C2E)));
    }
    AddStreetLamp(scene, {-8.3F, 1.4F, 3}, 4.2F, 0.9F, dark, Rgb(0xFFC070));
    AddStreetLamp(scene, {-8.3F, 1.4F, 14}, 4.2F, 0.9F, dark, Rgb(0xFFC070));
    AddJetty(scene.still, 6.8F, -5, 16, 0.8F);
    // A crane behind the quay.
    scene.still.push_back(Block({-9.5F, 7, 36}, {0.5F, 7, 0.5F}, Surface::Plain, Rgb(0xC88A20)));
    Shape jib = Block({-4.8F, 13.4F, 36}, {6.2F, 0.32F, 0.32F}, Surface::Plain, Rgb(0xC88A20));
    jib.Tip(0.2F);
    scene.still.push_back(jib);

    struct Berth {
        Vec3 at;
        float heading, length;
        unsigned hull;
        bool sail;
    };
    const std::vector<Berth> berths{{{-1.2F, 0, 0.5F}, 1.25F, 6.2F, 0xF0EEE6, false},
                                    {{4.3F, 0, 4.5F}, 0.35F, 5.2F, 0x1F4A7A, false},
                                    {{9.6F, 0, 8.5F}, 2.4F, 6.4F, 0xA82A26, false},
                                    {{0.6F, 0, 15}, -1.1F, 8.2F, 0xEDE6D2, true},
                                    {{-4.6F, 0, 9.5F}, 0.15F, 5.6F, 0x2E6A5A, false},
                                    {{13, 0, 24}, -1.5F, 9.0F, 0xF2F0EA, true}};
    for (const Berth& b : berths) {
        AddSailingBoat(scene.ghosts, b.at, b.heading, 0, b.length, Rgb(b.hull), b.sail);
    }
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        for (std::size_t i = 0; i < berths.size(); ++i) {
            const Berth& b = berths[i];
            const auto shift = static_cast<float>(i) * 0.23F;
            const Vec3 lift{0, 0.10F * (Swing(phase, 1, shift) - 0.5F), 0};
            AddSailingBoat(moving, b.at + lift, b.heading,
                           0.07F * (Swing(phase, 1, shift + 0.3F) - 0.5F), b.length, Rgb(b.hull),
                           b.sail);
        }
        AddGulls(moving, {2, 6.6F, 9}, 5.5F, phase, 5, seconds);
        AddStander(moving, {-8.4F, 1.4F, 6.4F}, 1.4F, phase, CommonPerson(3));
        AddStander(moving, {6.6F, 0.87F, 6.0F}, -1.9F, phase, CommonPerson(8));
    };
    return scene;
}

Scene Lake(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -0.75F, brief.seed);
    scene.eye = {0.8F, 3.4F, -11};
    scene.target = {0, 2.9F, 8};
    scene.fieldOfView = 60;
    scene.still.push_back(GroundOf(Surface::Water, Rgb(0x1E4A50)));
    Ridge peaks{
        .kind = Ridge::Kind::Mountains, .base = 0.06F, .amplitude = 0.34F, .frequency = 3.0F};
    peaks.colour = Distant(scene, brief, 0x56607A, 0.22F);
    peaks.tops = Mix(scene.sky.horizon, Vec3{1.0F, 1.0F, 1.05F}, 0.6F);
    peaks.topShare = 0.5F;
    scene.sky.ridges.push_back(peaks);
    Ridge slopes{
        .kind = Ridge::Kind::Mountains, .base = 0.03F, .amplitude = 0.19F, .frequency = 3.1F};
    slopes.colour = Distant(scene, brief, 0x46603E, 0.25F);
    scene.sky.ridges.push_back(slopes);
    Ridge wood{.kind = Ridge::Kind::Trees, .base = 0.012F, .amplitude = 0.055F, .frequency = 14};
    wood.colour = Distant(scene, brief, 0x35522E, 0.1F);
    scene.sky.ridges.push_back(wood);

    AddJetty(scene.still, -3.4F, -9, 3.5F, 0.55F);
    for (int i = 0; i < 3; ++i) {
        AddTree(scene.still,
                {7.2F + 3.4F * static_cast<float>(i), -0.2F, -1.5F + 4.0F * static_cast<float>(i)},
                5.5F + 2 * Chance(brief, i), Rgb(0x5E7E2E),
                brief.seed + static_cast<std::uint32_t>(i));
    }
    scene.still.push_back(Ball({12, -0.6F, 4}, {7.2F, 1.1F, 9}, Surface::Grass, Rgb(0x6A8238)));
    for (int i = 0; i < 26; ++i) {
        const float x = 4.6F + 1.6F * Chance(brief, i, 1);
        scene.still.push_back(Column({x, 0.45F, -5.5F + 0.5F * static_cast<float>(i)}, 0.018F,
                                     0.45F + 0.3F * Chance(brief, i), Surface::Plain,
                                     Rgb(0x8A8A42)));
    }
    AddHouse(scene.still, {13.5F, 0.2F, 11}, {2.2F, 1.3F, 2.8F}, 1.9F, Rgb(0x8A5A3A), 0.1F,
             brief.seed);
    const Vec3 boat{-1.0F, 0.1F, 0.4F};
    const Vec3 sail{4.0F, 0, 30};
    AddSailingBoat(scene.ghosts, sail, 1.2F, 0, 6.5F, Rgb(0xF0F0EC), true);
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        Shape hull = Column(boat + Vec3{0, 0.06F * Swing(phase), 0}, 0.62F, 0.26F, Surface::Wood,
                            Rgb(0x7A4A2A));
        hull.half.z = 1.9F;
        hull.Tip(0.08F * (Swing(phase, 1, 0.25F) - 0.5F));
        hull.TurnAbout(boat, 0.35F + 0.04F * Swing(phase));
        moving.push_back(hull);
        Shape inside = hull;
        inside.half = {0.54F, 0.03F, 1.78F};
        inside.centre.y += 0.25F;
        inside.colour = Rgb(0x3A2A1C);
        moving.push_back(inside);
        AddSailingBoat(moving, sail, 1.2F, 0.05F * (Swing(phase) - 0.5F), 6.5F, Rgb(0xF0F0EC),
                       true);
        AddGulls(moving, {-4, 5.4F, 14}, 4.5F, phase, 4, seconds);
        AddStander(moving, {-3.3F, 0.62F, 1.8F}, 0.9F, phase, CommonPerson(31));
    };
    return scene;
}

Scene Lighthouse(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, -1.3F, brief.seed);
    scene.eye = {-5, 4.6F, -17};
    scene.target = {1.6F, 3.6F, 6};
    scene.fieldOfView = 60;
    const bool dark = LampsBurn(brief.light);
    scene.still.push_back(GroundOf(Surface::Water, Rgb(0x1C5264)));
    Ridge coast{
        .kind = Ridge::Kind::Mountains, .base = 0.004F, .amplitude = 0.045F, .frequency = 1.6F};
    coast.colour = Distant(scene, brief, 0x64746C, 0.5F);
    scene.sky.ridges.push_back(coast);
    // Rocks, higher towards the tower.
    for (int i = 0; i < 34; ++i) {
        const float out = Chance(brief, i);
        const float turn = Chance(brief, i, 1) * 2 * kPi;
        const float size = 1.1F + 2.4F * (1 - out) * Chance(brief, i, 2);
        Shape rock = Ball(
            {6.5F + 8.5F * out * std::cos(turn), 0.5F * (1 - out), 9 + 6.5F * out * std::sin(turn)},
            {size * 1.3F, size * 0.75F, size}, Surface::Sand,
            Mix(Rgb(0x6E6A62), Rgb(0x9A8E7C), Chance(brief, i, 3)));
        scene.still.push_back(rock);
    }
    scene.still.push_back(Ball({7, 0.6F, 9.5F}, {6.2F, 1.9F, 5.2F}, Surface::Grass, Rgb(0x6E8A42)));
    const Vec3 foot{7.5F, 2.2F, 9.5F};
    for (int i = 0; i < 5; ++i) {
        Shape ring = Column(foot + Vec3{0, 0.9F + 1.8F * static_cast<float>(i), 0},
                            1.45F - 0.12F * static_cast<float>(i), 0.9F, Surface::Concrete,
                            i % 2 ? Rgb(0xB8231E) : Rgb(0xF0EEE8));
        scene.still.push_back(ring);
        scene.still.push_back(Block(foot + Vec3{-0.9F, 1.0F + 1.8F * static_cast<float>(i), -0.95F},
                                    {0.18F, 0.3F, 0.25F}, Surface::Glass, Rgb(0x20262A)));
    }
    scene.still.push_back(
        Column(foot + Vec3{0, 9.1F, 0}, 1.35F, 0.12F, Surface::Plain, Rgb(0x3A3E42)));
    scene.still.push_back(
        Column(foot + Vec3{0, 9.85F, 0}, 0.62F, 0.65F, Surface::Glass, Rgb(0x9AB0B8)));
    Shape cap = Ball(foot + Vec3{0, 10.5F, 0}, {0.8F, 0.55F, 0.8F}, Surface::Paint, Rgb(0xA8201C));
    scene.still.push_back(cap);
    AddHouse(scene.still, {3.2F, 1.9F, 9.8F}, {1.9F, 1.15F, 1.4F}, 1.3F, Rgb(0xEDE8DC),
             dark ? 0.6F : 0.0F, brief.seed);
    for (int i = 0; i < 12; ++i) {
        scene.still.push_back(Block({0.6F + 0.9F * static_cast<float>(i), 2.35F, 6.3F},
                                    {0.05F, 0.42F, 0.05F}, Surface::Wood, Rgb(0xE8E4DA)));
    }
    scene.still.push_back(
        Block({5.5F, 2.62F, 6.3F}, {5.2F, 0.05F, 0.04F}, Surface::Wood, Rgb(0xE8E4DA)));
    const Vec3 boat{-5.2F, 0, 12};
    AddSailingBoat(scene.ghosts, boat, 1.1F, 0, 7, Rgb(0xF2F0EA), true);
    const Vec3 lamp = foot + Vec3{0, 9.85F, 0};
    const float seconds = brief.seconds;
    scene.animate = [=](float phase, Shapes& moving) {
        AddSailingBoat(moving, boat + Vec3{0, 0.14F * (Swing(phase) - 0.5F), 0}, 1.1F,
                       0.16F * (Swing(phase, 1, 0.2F) - 0.3F), 7, Rgb(0xF2F0EA), true);
        AddSailingBoat(moving, {-16, 0.1F * Swing(phase, 1, 0.6F), 46}, -1.3F,
                       0.1F * (Swing(phase, 1, 0.7F) - 0.5F), 9, Rgb(0x244A80), true);
        AddGulls(moving, {0.5F, 8.2F, 7}, 5, phase, 6, seconds);
        const float flash = Smooth(0.75F, 1.0F, Swing(phase));
        moving.push_back(Glow(lamp, {0.3F, 0.35F, 0.3F}, Rgb(0xFFF4D0), 0.6F + 7 * flash));
    };
    return scene;
}

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
    for (int i = 0; i < 22; ++i) {
        // Flower beds along the path.
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
    // A shed with a door and a window.
    scene.still.push_back(Block({5.6F, 1.2F, 6}, {1.9F, 1.2F, 1.5F}, Surface::Wood, Rgb(0x8A6A48)));
    Shape roof = Block({5.6F, 2.9F, 6}, {2.2F, 0.55F, 1.8F}, Surface::RoofTiles, Rgb(0x6A6664));
    roof.taperZ = 0.95F;
    scene.still.push_back(roof);
    scene.still.push_back(
        Block({5.0F, 1.0F, 4.48F}, {0.5F, 1.0F, 0.05F}, Surface::Wood, Rgb(0xC8B898)));
    scene.still.push_back(
        Block({6.5F, 1.4F, 4.47F}, {0.4F, 0.35F, 0.05F}, Surface::Glass, Rgb(0x202428)));
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
