#include "tools/camera_server/scenes/renderer.h"

#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/surface.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <utility>

namespace marvolen::scenes {
namespace {

constexpr float kFar = 1e6F;
constexpr float kLift = 2e-3F;  // rays leave a surface from just above it

// From linear light to a display's 0 to 1, with the shoulder and toe of film
// (J. Hejl and R. Burgess-Dawson, GDC 2010).
float Film(float light) {
    const float x = std::max(0.0F, light - 0.004F);
    return x * (6.2F * x + 0.5F) / (x * (6.2F * x + 1.7F) + 0.06F);
}

std::uint32_t Pack(const Vec3& c) {
    const auto byte = [](float v) {
        return static_cast<std::uint32_t>(std::clamp(v * 255.0F + 0.5F, 0.0F, 255.0F));
    };
    return 0xFF000000U | byte(c.x) << 16 | byte(c.y) << 8 | byte(c.z);
}

}  // namespace

std::uint32_t Average(const std::uint32_t* colours, std::size_t count) {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    for (std::size_t i = 0; i < count; ++i) {
        red += colours[i] >> 16 & 0xFF;
        green += colours[i] >> 8 & 0xFF;
        blue += colours[i] & 0xFF;
    }
    const auto n = static_cast<std::uint32_t>(count);
    return 0xFF000000U | red / n << 16 | green / n << 8 | blue / n;
}

Renderer::Renderer(Scene theScene, int pictureWidth, int pictureHeight)
    : scene(std::move(theScene)), width(pictureWidth), height(pictureHeight), skyMap(scene.sky) {
    scene.keyDirection = Normalised(scene.keyDirection);
    viewAhead = Normalised(scene.target - scene.eye);
    viewRight = Normalised(Cross({0, 1, 0}, viewAhead));
    viewUp = Cross(viewAhead, viewRight);
    const float half = scene.fieldOfView * std::numbers::pi_v<float> / 360.0F;
    pixelSlope = 2 * std::tan(half) / static_cast<float>(width);
    tree.Build(std::exchange(scene.still, {}));
    RenderStill();
}

Ray Renderer::PixelRay(float x, float y) const {
    const float dx = (x - static_cast<float>(width) / 2) * pixelSlope;
    const float dy = (static_cast<float>(height) / 2 - y) * pixelSlope;
    return {scene.eye, Normalised(viewAhead + viewRight * dx + viewUp * dy)};
}

bool Renderer::Project(const Vec3& point, float& x, float& y) const {
    const Vec3 v = point - scene.eye;
    const float depth = Dot(v, viewAhead);
    if (depth < 0.05F) return false;
    x = Dot(v, viewRight) / (depth * pixelSlope) + static_cast<float>(width) / 2;
    y = static_cast<float>(height) / 2 - Dot(v, viewUp) / (depth * pixelSlope);
    return true;
}

bool Renderer::KeyReaches(const Vec3& point, const Vec3& normal) const {
    if (Dot(normal, scene.keyDirection) <= 0) return false;
    return !tree.Blocked({point + normal * kLift, scene.keyDirection}, kFar);
}

// The share of four directions in which nothing is near. Neighbouring pixels look in different
// ones; SmoothOcclusion puts them together.
float Renderer::Occlusion(const Vec3& point, const Vec3& normal, int pattern) const {
    const Vec3 side =
        Normalised(Cross(normal, std::abs(normal.y) < 0.9F ? Vec3{0, 1, 0} : Vec3{1, 0, 0}));
    const Vec3 other = Cross(normal, side);
    float open = 0;
    for (int i = 0; i < 4; ++i) {
        const float turn = (static_cast<float>(i) + static_cast<float>(pattern * 7 % 16) / 16) *
                           std::numbers::pi_v<float> / 2;
        const float lean = 0.45F + 0.45F * static_cast<float>((pattern * 5 + i * 3) % 16) / 16;
        const float rise = std::sqrt(1 - lean * lean);
        const Vec3 direction =
            side * (lean * std::cos(turn)) + other * (lean * std::sin(turn)) + normal * rise;
        if (!tree.Blocked({point + normal * kLift, direction}, scene.occlusionReach)) open += 0.25F;
    }
    return open;
}

Renderer::Colours Renderer::Shade(const Ray& ray, const Hit& hit, const Shape& shape,
                                  float occlusion, bool keyReaches, int bounces) const {
    const Vec3 point = ray.origin + ray.direction * hit.distance;
    Vec3 normal = hit.normal;
    if (shape.surface == Surface::Leaves && Dot(normal, ray.direction) > 0) normal = -normal;
    const float facing = std::max(-Dot(ray.direction, normal), 0.02F);
    const Look look = LookOf(shape, point, normal, hit.distance * pixelSlope / std::sqrt(facing));

    const float upness = normal.y * 0.5F + 0.5F;
    Vec3 light = Mix(scene.ambientDown, scene.ambientUp, upness) * (0.12F + 0.88F * occlusion);
    for (const Lamp& lamp : scene.lamps) {
        const Vec3 way = lamp.position - point;
        const float distance = Length(way);
        if (distance >= lamp.reach) continue;
        const float fade = 1 - distance / lamp.reach;
        const float slant = std::max(Dot(way, normal) / std::max(distance, 0.01F), 0.0F);
        light += lamp.colour * (slant * fade * fade * (0.4F + 0.6F * occlusion) /
                                (1 + distance * distance * 0.3F));
    }
    Vec3 shaded = look.colour * light + look.glow;
    float slant = std::max(Dot(normal, scene.keyDirection), 0.0F);
    // Light seeps through leaves.
    if (shape.surface == Surface::Leaves) slant = slant * 0.7F + 0.15F;
    Vec3 key = look.colour * scene.keyColour * slant;

    if (look.gloss > 0 && shape.surface != Surface::Water) {
        const Vec3 mirrored = Reflect(ray.direction, normal);
        const float grazing = std::pow(1 - facing, 5.0F);
        const float share = look.gloss + (std::min(1.0F, look.gloss * 6) - look.gloss) * grazing;
        const Vec3 seen = bounces > 0 && look.gloss > 0.03F
                              ? Trace({point + normal * kLift, mirrored}, bounces - 1)
                              : skyMap.Look(mirrored) * occlusion;
        shaded = Mix(shaded, seen, share);
        key = key * (1 - share);
        const float shine = std::pow(std::max(Dot(mirrored, scene.keyDirection), 0.0F), 160.0F);
        key += scene.keyColour * (shine * share * 5);
    }
    Colours colours{keyReaches ? shaded + key : shaded, shaded};
    if (scene.fogDistance > 0) {
        const float clear = std::exp(-hit.distance / scene.fogDistance);
        colours.lit = Mix(scene.sky.horizon, colours.lit, clear);
        colours.shaded = Mix(scene.sky.horizon, colours.shaded, clear);
    }
    return colours;
}

Vec3 Renderer::Trace(const Ray& ray, int bounces) const {
    Hit hit{kFar, {}};
    const Shape* shape = tree.First(ray, hit);
    for (const Shape& ghost : scene.ghosts) {
        if (Intersect(ghost, ray, hit)) shape = &ghost;
    }
    if (!shape) return skyMap.Look(ray.direction);
    const Vec3 point = ray.origin + ray.direction * hit.distance;
    return Shade(ray, hit, *shape, 0.8F, KeyReaches(point, hit.normal), bounces).lit;
}

std::uint32_t Renderer::Develop(const Vec3& light, int x, int y) const {
    const float dx = (static_cast<float>(x) / static_cast<float>(width) - 0.5F) * 1.1F;
    const float dy = (static_cast<float>(y) / static_cast<float>(height) - 0.5F) * 0.9F;
    const float fall = 1 - 0.55F * (dx * dx + dy * dy);  // lenses are darker towards the corners
    Vec3 c = light * (scene.exposure * fall);
    const float grey = 0.3F * c.x + 0.55F * c.y + 0.15F * c.z;
    c = Mix({grey, grey, grey}, c, scene.infrared ? 0.0F : scene.saturation);
    return Pack({Film(c.x), Film(c.y), Film(c.z)});
}

void Renderer::RenderStill() {
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<const Shape*> seen(count, nullptr);
    std::vector<Hit> hits(count);
    std::vector<Vec3> normals(count);
    std::vector<float> occlusion(count, 1.0F);
    stills.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const int x = static_cast<int>(i) % width;
        const int y = static_cast<int>(i) / width;
        const Ray ray = PixelRay(static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F);
        hits[i].distance = kFar;
        seen[i] = tree.First(ray, hits[i]);
        if (!seen[i]) continue;
        normals[i] = hits[i].normal;
        // One pixel in four looks around, the others borrow from it.
        if (((x | y) & 1) != 0) continue;
        occlusion[i] = Occlusion(ray.origin + ray.direction * hits[i].distance, hits[i].normal,
                                 (x & 6) * 2 + (y & 6) / 2);
    }
    SmoothOcclusion(occlusion, seen);
    for (std::size_t i = 0; i < count; ++i) {
        const int x = static_cast<int>(i) % width;
        const int y = static_cast<int>(i) / width;
        const Ray ray = PixelRay(static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F);
        if (!seen[i]) {
            const std::uint32_t sky = Develop(SkyColour(scene.sky, ray.direction), x, y);
            stills[i] = {sky, sky, -1, false};
            continue;
        }
        const Vec3 point = ray.origin + ray.direction * hits[i].distance;
        const bool keyReaches = KeyReaches(point, hits[i].normal);
        const Colours colours = Shade(ray, hits[i], *seen[i], occlusion[i], keyReaches, 1);
        stills[i] = {Develop(colours.lit, x, y), Develop(colours.shaded, x, y), hits[i].distance,
                     keyReaches};
    }
    SoftenEdges(seen, normals);
    PrepareWater(seen);
}

void Renderer::SmoothOcclusion(std::vector<float>& occlusion,
                               const std::vector<const Shape*>& seen) const {
    const std::vector<float> rough = occlusion;
    float nearest = 1;  // for pixels with nobody to borrow from
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto here = static_cast<std::size_t>(y * width + x);
            if (!seen[here]) continue;
            float sum = 0;
            int count = 0;
            const int top = std::max((y - 3) & ~1, 0);
            const int left = std::max((x - 3) & ~1, 0);
            for (int v = top; v <= std::min(y + 4, height - 1); v += 2) {
                for (int u = left; u <= std::min(x + 4, width - 1); u += 2) {
                    const auto there = static_cast<std::size_t>(v * width + u);
                    if (seen[there] != seen[here]) continue;
                    sum += rough[there];
                    ++count;
                }
            }
            if (count > 0) nearest = sum / static_cast<float>(count);
            occlusion[here] = nearest;
        }
    }
}

// Pixels at the border of two bodies or faces look at three points instead of one.
void Renderer::SoftenEdges(const std::vector<const Shape*>& seen,
                           const std::vector<Vec3>& normals) {
    static constexpr std::array<std::pair<float, float>, 2> kPoints{{{0.2F, 0.15F}, {0.8F, 0.85F}}};
    const auto differs = [&](std::size_t a, std::size_t b) {
        return seen[a] != seen[b] || (seen[a] && Dot(normals[a], normals[b]) < 0.9F);
    };
    for (int y = 1; y + 1 < height; ++y) {
        for (int x = 1; x + 1 < width; ++x) {
            const auto here = static_cast<std::size_t>(y * width + x);
            const auto row = static_cast<std::size_t>(width);
            if (!differs(here, here - 1) && !differs(here, here + 1) &&
                !differs(here, here - row) && !differs(here, here + row)) {
                continue;
            }
            if (seen[here] && seen[here]->surface == Surface::Leaves) continue;
            std::array<std::uint32_t, kPoints.size() + 1> colours{stills[here].lit};
            for (std::size_t i = 0; i < kPoints.size(); ++i) {
                const Ray ray = PixelRay(static_cast<float>(x) + kPoints[i].first,
                                         static_cast<float>(y) + kPoints[i].second);
                Hit hit{kFar, {}};
                const Shape* const shape = tree.First(ray, hit);
                Vec3 light = shape ? Vec3{} : SkyColour(scene.sky, ray.direction);
                if (shape) {
                    const Vec3 point = ray.origin + ray.direction * hit.distance;
                    light = Shade(ray, hit, *shape, 0.7F, KeyReaches(point, hit.normal), 0).lit;
                }
                colours[i + 1] = Develop(light, x, y);
            }
            stills[here].lit = Average(colours.data(), colours.size());
        }
    }
}

void Renderer::AddNoise(Pixels& pixels, std::uint32_t seed) const {
    static const std::vector<float> kGrain = [] {
        std::vector<float> grain(1 << 16);
        for (std::size_t i = 0; i < grain.size(); ++i) {
            float sum = 0;  // of six even distributions is near enough to a normal one
            for (int k = 0; k < 6; ++k) sum += HashUnit(static_cast<std::int32_t>(i), k, 5);
            grain[i] = (sum - 3) * std::numbers::sqrt2_v<float>;
        }
        return grain;
    }();
    const float strength = scene.noise;
    for (int y = 0; y < height; ++y) {
        const std::size_t room = kGrain.size() - 3 * static_cast<std::size_t>(width);
        const float* grain = kGrain.data() + Hash(y, 1, seed) % room;
        std::uint32_t* pixel = pixels.data() + static_cast<std::ptrdiff_t>(y) * width;
        for (int x = 0; x < width; ++x) {
            const float common = grain[x] * strength;
            const std::uint32_t p = pixel[x];
            const auto add = [p, common](int shift, float own) {
                const float value = static_cast<float>(p >> shift & 0xFF) + common + own;
                return static_cast<std::uint32_t>(std::clamp(value, 0.0F, 255.0F)) << shift;
            };
            const float tint = grain[x + width] * strength * 0.35F;
            pixel[x] = 0xFF000000U | add(16, tint) | add(8, 0) | add(0, -tint);
        }
    }
}

}  // namespace marvolen::scenes
