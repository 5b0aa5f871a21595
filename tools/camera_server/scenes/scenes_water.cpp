// Places by the water: harbour, lake, lighthouse.

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

// The quay with the houses on it.
void AddQuay(Scene& scene, const Brief& brief) {
    const bool dark = LampsBurn(brief.light);
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
}

// The lighthouse, and the house beside it.
void AddTower(Scene& scene, const Vec3& foot, const Brief& brief) {
    const bool dark = LampsBurn(brief.light);
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
}

}  // namespace

Scene Harbour(const Brief& brief) {
    Scene scene;
    LightUp(scene, brief.light, 0.42F, brief.seed);
    scene.eye = {-2.5F, 4.2F, -12};
    scene.target = {0.8F, 1.9F, 8};
    scene.fieldOfView = 62;
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

    AddQuay(scene, brief);
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
    AddTower(scene, foot, brief);
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

}  // namespace marvolen::scenes
