// What changes from picture to picture: waves, moving bodies with their shadows, rain and snow.

#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/renderer.h"

#include <array>
#include <cstddef>
#include <numbers>

namespace marvolen::scenes {
namespace {

constexpr float kTau = 2 * std::numbers::pi_v<float>;
constexpr float kGravity = 9.81F;
constexpr int kTile = 16;

// Sine of an angle in turns, from a table.
float Sine(float turns) {
    static const std::array<float, 1024> kTable = [] {
        std::array<float, 1024> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = std::sin(kTau * static_cast<float>(i) / 1024);
        }
        return table;
    }();
    return kTable[static_cast<std::size_t>(static_cast<int>((turns + 4096) * 1024) & 1023)];
}

struct Wave {
    float x, z;    // turns per metre
    float cycles;  // per loop
    float slope;   // steepness
    float length;  // metres
};

// Waves on deep water run at a speed that belongs to their length: w * w = g * k. Taking those that
// swing a whole number of times in a loop makes the loop seamless.
constexpr std::size_t kWaves = 18;

std::array<Wave, kWaves> MakeWaves(float seconds) {
    std::array<Wave, kWaves> waves{};
    for (std::size_t i = 0; i < waves.size(); ++i) {
        const auto n = static_cast<std::int32_t>(i);
        const float wanted = 1.6F * std::pow(1.125F, static_cast<float>(i));  // radians a second
        const float cycles = std::max(1.0F, std::round(wanted * seconds / kTau));
        const float omega = cycles * kTau / seconds;
        const float k = omega * omega / kGravity * (0.85F + 0.3F * HashUnit(n, 4, 3));
        const float heading = 0.5F + 2.2F * (HashUnit(n, 1, 3) - 0.5F);
        waves[i] = {k * std::sin(heading) / kTau, k * std::cos(heading) / kTau, -cycles,
                    0.020F + 0.022F * HashUnit(n, 2, 3), kTau / k};
    }
    return waves;
}

}  // namespace

void Renderer::PrepareWater(const std::vector<const Shape*>& seen) {
    for (std::size_t i = 0; i < seen.size(); ++i) {
        if (!seen[i] || seen[i]->surface != Surface::Water) continue;
        if (mirror.empty()) mirror.assign(seen.size(), {-1, 0, 0});
        const int px = static_cast<int>(i) % width;
        const int py = static_cast<int>(i) / width;
        const Ray ray = PixelRay(static_cast<float>(px) + 0.5F, static_cast<float>(py) + 0.5F);
        const Vec3 point = ray.origin + ray.direction * stills[i].distance;
        const Vec3 up{0, 1, 0};
        const float distance = stills[i].distance;
        stills[i].keyReaches = false;  // water shows no shadows
        mirror[i] = Trace({point + up * 0.01F, Reflect(ray.direction, up)}, 0);
        const float mirrored = 0.06F + 0.94F * std::pow(1 + ray.direction.y, 4.0F);
        const float clear = scene.fogDistance > 0 ? std::exp(-distance / scene.fogDistance) : 1.0F;
        water.push_back({static_cast<std::uint32_t>(i), point.x, point.z, distance * pixelSlope * 2,
                         Noise(point.x * 0.35F, point.z * 0.35F) * 0.9F,
                         0.35F + 1.1F * Noise(point.x * 0.05F + 9, point.z * 0.08F),
                         std::min(mirrored, 0.92F), clear, ray.direction});
        waterColour = seen[i]->colour * (scene.ambientUp + scene.keyColour * 0.25F);
    }
}

Pixels Renderer::Render(float phase) const {
    Pixels pixels(stills.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = stills[i].lit;
    RenderWater(phase, pixels);
    RenderMoving(phase, pixels);
    RenderWeather(phase, pixels);
    return pixels;
}

void Renderer::RenderWater(float phase, Pixels& pixels) const {
    if (water.empty()) return;
    const std::array<Wave, kWaves> waves = MakeWaves(scene.seconds);
    // How far a tilted facet looks aside, in pixels per unit of slope; less to the side, where
    // ripples show their edge.
    const float reach = 0.55F / pixelSlope;
    for (const WaterPixel& w : water) {
        float slopeX = 0;
        float slopeZ = 0;
        for (const Wave& wave : waves) {
            if (wave.length < w.footprint) break;  // and so are all that follow
            const float seen = std::min(1.0F, wave.length / (w.footprint * 5) - 0.2F);
            const float swing = Sine(w.x * wave.x + w.z * wave.z + wave.cycles * phase + w.bend) *
                                wave.slope * seen;
            slopeX += swing * wave.x * wave.length;
            slopeZ += swing * wave.z * wave.length;
        }
        slopeX *= w.gust;
        slopeZ *= w.gust;
        const int row = static_cast<int>(w.index) / width;
        const int column = static_cast<int>(w.index) % width;
        const int fromX =
            std::clamp(column + static_cast<int>(slopeX * reach * 0.5F), 0, width - 1);
        const int fromY = std::clamp(row + static_cast<int>(slopeZ * reach), 0, height - 1);
        Vec3 seen = mirror[static_cast<std::size_t>(fromY * width + fromX)];
        if (seen.x < 0) seen = mirror[w.index];
        const float mirrored = std::clamp(w.mirrored - slopeZ * 1.6F, 0.03F, 0.95F);
        Vec3 light = Mix(waterColour * (1 + slopeZ * 3), seen, mirrored);

        const Vec3 normal = Normalised({-slopeX, 1, -slopeZ});
        float glint = std::max(Dot(Reflect(w.direction, normal), scene.keyDirection), 0.0F);
        for (int i = 0; i < 8; ++i) glint *= glint;
        light += scene.keyColour * (0.9F * glint);
        pixels[w.index] = Develop(Mix(scene.sky.horizon, light, w.clear), column, row);
    }
}

// Widens rect by where the body is seen. With flatten its corners are laid down
// along the key light first: that is where its shadow falls.
void Renderer::AddBounds(const Shape& shape, bool flatten, Rect& rect) const {
    const Vec3 bounds = shape.Bounds();
    for (int corner = 0; corner < 8; ++corner) {
        Vec3 p = shape.centre + Vec3{corner & 1 ? bounds.x : -bounds.x,
                                     corner & 2 ? bounds.y : -bounds.y,
                                     corner & 4 ? bounds.z : -bounds.z};
        if (flatten) {
            const float fall = std::min(p.y / std::max(scene.keyDirection.y, 0.08F), 60.0F);
            p = p - scene.keyDirection * std::max(fall, 0.0F);
        }
        float x = 0;
        float y = 0;
        if (!Project(p, x, y)) continue;
        const auto left = static_cast<int>(std::clamp(x - 1, -1e5F, 1e5F));
        const auto top = static_cast<int>(std::clamp(y - 1, -1e5F, 1e5F));
        if (rect.right < rect.left) rect = {left, top, left + 2, top + 2};
        rect = {std::min(rect.left, left), std::min(rect.top, top), std::max(rect.right, left + 2),
                std::max(rect.bottom, top + 2)};
    }
}

void Renderer::RenderMoving(float phase, Pixels& pixels) const {
    if (!scene.animate) return;
    std::vector<Shape> moving;
    scene.animate(phase, moving);
    const int columns = (width + kTile - 1) / kTile;
    const int rows = (height + kTile - 1) / kTile;
    std::vector<Movers> bodies(static_cast<std::size_t>(columns * rows));
    std::vector<Movers> shadows(bodies.size());
    const auto place = [&](Rect rect, const Shape& shape, std::vector<Movers>& lists) {
        if (rect.right < rect.left) return;
        for (int r = std::max(rect.top, 0) / kTile; r <= std::min(rect.bottom, height - 1) / kTile;
             ++r) {
            for (int c = std::max(rect.left, 0) / kTile;
                 c <= std::min(rect.right, width - 1) / kTile; ++c) {
                lists[static_cast<std::size_t>(r * columns + c)].push_back({&shape, rect});
            }
        }
    };
    for (const Shape& shape : moving) {
        Rect rect;
        AddBounds(shape, false, rect);
        place(rect, shape, bodies);
        if (!shape.castsShadow) continue;
        AddBounds(shape, true, rect);
        place(rect, shape, shadows);
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto tile = static_cast<std::size_t>(y / kTile * columns + x / kTile);
            if (bodies[tile].empty() && shadows[tile].empty()) {
                x += kTile - 1 - x % kTile;
                continue;
            }
            std::uint32_t& pixel = pixels[static_cast<std::size_t>(y * width + x)];
            pixel = MovingPixel(x, y, bodies[tile], shadows[tile], pixel);
        }
    }
}

std::uint32_t Renderer::MovingPixel(int x, int y, const Movers& bodies, const Movers& shadows,
                                    std::uint32_t behind) const {
    const StillPixel& still = stills[static_cast<std::size_t>(y * width + x)];
    const auto fx = static_cast<float>(x);
    const auto fy = static_cast<float>(y);
    if (still.keyReaches && still.lit != still.shaded && !shadows.empty()) {
        const Ray view = PixelRay(fx + 0.5F, fy + 0.5F);
        const Ray toKey{view.origin + view.direction * (still.distance * 0.9995F),
                        scene.keyDirection};
        for (const Mover& mover : shadows) {
            Hit hit{1e6F, {}};
            if (!mover.rect.Holds(x, y) || !Intersect(*mover.shape, toKey, hit)) continue;
            behind = still.shaded;
            break;
        }
    }
    if (bodies.empty()) return behind;
    const float nearest = still.distance < 0 ? 1e6F : still.distance;
    std::array<std::uint32_t, 4> colours{behind, behind, behind, behind};
    const bool first = MovingSample(fx + 0.3F, fy + 0.2F, bodies, nearest, colours[0]);
    const bool second = MovingSample(fx + 0.7F, fy + 0.8F, bodies, nearest, colours[1]);
    if (!first && !second) return behind;
    if (first && second) return Average(colours.data(), 2);
    MovingSample(fx + 0.8F, fy + 0.3F, bodies, nearest, colours[2]);
    MovingSample(fx + 0.2F, fy + 0.7F, bodies, nearest, colours[3]);
    return Average(colours.data(), 4);
}

bool Renderer::MovingSample(float x, float y, const Movers& bodies, float nearest,
                            std::uint32_t& colour) const {
    const Ray ray = PixelRay(x, y);
    Hit hit{nearest, {}};
    const Shape* found = nullptr;
    for (const Mover& mover : bodies) {
        if (mover.rect.Holds(static_cast<int>(x), static_cast<int>(y)) &&
            Intersect(*mover.shape, ray, hit)) {
            found = mover.shape;
        }
    }
    if (!found) return false;
    const Vec3 point = ray.origin + ray.direction * hit.distance;
    const bool keyReaches = KeyReaches(point, hit.normal);
    colour = Develop(Shade(ray, hit, *found, 0.8F, keyReaches, 0).lit, static_cast<int>(x),
                     static_cast<int>(y));
    return true;
}

// Drops and flakes fall a whole number of picture heights in a loop.
void Renderer::RenderWeather(float phase, Pixels& pixels) const {
    if (scene.weather == Scene::Weather::Dry) return;
    const bool snow = scene.weather == Scene::Weather::Snow;
    const int count = snow ? 420 : 320;
    for (int i = 0; i < count; ++i) {
        const float depth = 0.3F + 0.7F * HashUnit(i, 1, 21);
        const float falls =
            std::max(1.0F, std::round((snow ? 0.35F : 1.6F) * scene.seconds * depth));
        float down = HashUnit(i, 2, 21) + phase * falls;
        down -= std::floor(down);
        const float sway = snow ? 0.012F * std::sin(kTau * (phase + HashUnit(i, 3, 21))) : 0.0F;
        const float across = HashUnit(i, 4, 21) + sway + (snow ? 0 : 0.03F * down);
        const int x = static_cast<int>(across * static_cast<float>(width)) % width;
        const int y = static_cast<int>(down * static_cast<float>(height));
        const float scale = static_cast<float>(height) / 480;
        const int tall = std::max(1, static_cast<int>((snow ? 2.6F : 20.0F) * depth * scale));
        const int wide = std::max(1, static_cast<int>((snow ? 2.6F : 1.0F) * depth * scale));
        const std::uint32_t opacity = snow ? 190 : 46;
        for (int v = std::max(y, 0); v < std::min(y + tall, height); ++v) {
            for (int u = std::max(x, 0); u < std::min(x + wide, width); ++u) {
                std::uint32_t& pixel = pixels[static_cast<std::size_t>(v * width + u)];
                std::uint32_t mixed = 0xFF000000U;
                for (const int shift : {16, 8, 0}) {
                    const std::uint32_t old = pixel >> shift & 0xFF;
                    mixed |= (old + (225 > old ? 225 - old : 0) * opacity / 256) << shift;
                }
                pixel = mixed;
            }
        }
    }
}

}  // namespace marvolen::scenes
