#include "tools/camera_server/scenes/sky.h"

#include "tools/camera_server/scenes/noise.h"

#include <cstddef>

namespace marvolen::scenes {
namespace {

constexpr int kMapSize = 192;

Vec3 Clear(const Sky& sky, const Vec3& d) {
    const float height = std::max(d.y, 0.0F);
    Vec3 colour = Mix(sky.horizon, sky.zenith, std::pow(height, 0.45F));
    const float toSun = std::max(Dot(d, sky.sunDirection), 0.0F);
    colour += sky.glow * (0.25F * std::pow(toSun, 6.0F) + 0.6F * std::pow(toSun, 90.0F));
    if (sky.disc > 0) colour += sky.glow * (sky.disc * Smooth(0.99945F, 0.99975F, toSun));
    return colour;
}

Vec3 WithClouds(const Sky& sky, const Vec3& d, const Vec3& clear) {
    if (sky.clouds <= 0 || d.y <= 0.005F) return clear;
    // A flat layer, seen in perspective but not quite to the horizon.
    const float scale = 1.1F / (d.y + 0.12F);
    const float u = d.x * scale * 1.6F + static_cast<float>(sky.seed % 131);
    const float v = d.z * scale * 1.6F + 41;
    const float warp = Noise(u * 0.7F + 5, v * 0.7F) * 1.5F;
    const float density = Fractal(u + warp, v, 6, 0.004F * scale);
    const float cover = Smooth(0.72F - 0.5F * sky.clouds, 0.95F - 0.45F * sky.clouds, density);
    const float light =
        Fractal(u + warp + sky.sunDirection.x * 0.35F, v + sky.sunDirection.z * 0.35F, 4);
    const Vec3 body =
        Mix(sky.cloudLight, sky.cloudShade, Smooth(0.25F, 0.75F, density * 0.6F + light * 0.5F));
    const float toSun = std::max(Dot(d, sky.sunDirection), 0.0F);
    const Vec3 rim = sky.glow * (0.35F * std::pow(toSun, 12.0F) * (1 - cover * 0.5F));
    return Mix(clear, body + rim, cover * Smooth(0.0F, 0.12F, d.y) * 0.95F);
}

Vec3 Stars(const Sky& sky, const Vec3& d) {
    const float scale = 190.0F / (d.y + 0.6F);
    const float u = d.x * scale;
    const float v = d.z * scale;
    const auto x = static_cast<std::int32_t>(std::floor(u));
    const auto y = static_cast<std::int32_t>(std::floor(v));
    const float chance = HashUnit(x, y, sky.seed + 9);
    if (chance < 0.985F) return {};
    const float dx = u - static_cast<float>(x) - 0.5F;
    const float dy = v - static_cast<float>(y) - 0.5F;
    const float bright = std::max(0.0F, 1 - 6 * (dx * dx + dy * dy)) * (chance - 0.985F) * 40;
    return Vec3{0.9F, 0.95F, 1.0F} * (bright * sky.stars);
}

struct Silhouette {
    bool inside = false;
    Vec3 colour = {};
};

Silhouette Houses(const Ridge& ridge, float azimuth, float slope, std::uint32_t seed) {
    const float along = azimuth * ridge.frequency;
    const auto house = static_cast<std::int32_t>(std::floor(along));
    const float tall = HashUnit(house, 3, seed);
    const float within = along - static_cast<float>(house);
    float top = ridge.base + ridge.amplitude * (0.25F + 0.75F * tall * tall);
    // Some have a narrower upper storey, some a mast.
    if (HashUnit(house, 5, seed) > 0.5F && std::abs(within - 0.5F) < 0.28F) {
        top += ridge.amplitude * 0.16F;
    }
    if (HashUnit(house, 6, seed) > 0.8F && std::abs(within - 0.5F) < 0.02F) {
        top += ridge.amplitude * 0.4F;
    }
    if (slope > top) return {};
    const float shade = 0.75F + 0.5F * HashUnit(house, 8, seed);
    Vec3 colour = ridge.colour * shade;
    const float cell = std::max(ridge.amplitude / 26, 0.0035F);
    const float column = within * std::max(3.0F, std::floor(1 / (cell * ridge.frequency)));
    const float row = slope / cell;
    const auto window = static_cast<std::int32_t>(std::floor(column)) + house * 64;
    const auto floorNumber = static_cast<std::int32_t>(std::floor(row));
    const float inColumn = column - std::floor(column);
    const float inRow = row - std::floor(row);
    if (inColumn > 0.25F && inColumn < 0.8F && inRow > 0.25F && inRow < 0.75F) {
        const float chance = HashUnit(window, floorNumber, seed + 1);
        const Vec3 lamp = ridge.tops * (0.4F + HashUnit(window, floorNumber, seed + 2));
        colour = chance < ridge.topShare ? lamp : colour * 0.8F;
    }
    return {true, colour};
}

Silhouette Hills(const Ridge& ridge, float azimuth, float slope, std::uint32_t seed) {
    const float along = azimuth * ridge.frequency + static_cast<float>(seed % 53) * 3.1F;
    const bool trees = ridge.kind == Ridge::Kind::Trees;
    float shape = Fractal(along, static_cast<float>(seed % 17), trees ? 3 : 7);
    if (trees) shape = shape * 0.6F + 0.4F * Fractal(along * 9, 7.7F, 4);
    const float top = ridge.base + ridge.amplitude * (shape - 0.25F) * 1.6F;
    if (slope > top) return {};
    const float up = slope * ridge.frequency * (trees ? 30.0F : 12.0F);
    const float texture = Fractal(along * 7, up, 6);
    // Faces turned to one side are lit, the others lie in shade.
    const float relief = texture - Fractal(along * 7 + 0.3F, up - 0.12F, 6);
    Vec3 colour = ridge.colour * std::max(0.35F, 0.72F + 0.56F * texture + 2.4F * relief);
    if (ridge.topShare > 0) {
        const float high = (slope - ridge.base) / std::max(ridge.amplitude, 1e-4F);
        const float line = 1 - ridge.topShare + (texture - 0.5F) * 0.9F;
        const Vec3 snow = ridge.tops * std::max(0.5F, 0.95F + 2.2F * relief);
        colour = Mix(colour, snow, Smooth(line, line + 0.12F, high));
    }
    // Haze gathers at the foot.
    return {true, colour};
}

}  // namespace

Vec3 SkyColour(const Sky& sky, const Vec3& d) {
    const float level = std::sqrt(d.x * d.x + d.z * d.z);
    const float slope = d.y / std::max(level, 1e-5F);
    if (!sky.ridges.empty() && slope < 0.8F) {
        const float azimuth = std::atan2(d.x, d.z);
        for (std::size_t i = sky.ridges.size(); i-- > 0;) {
            const Ridge& ridge = sky.ridges[i];
            if (slope > ridge.base + ridge.amplitude * 1.7F) continue;
            const std::uint32_t seed = sky.seed + 31 * static_cast<std::uint32_t>(i);
            const Silhouette seen = ridge.kind == Ridge::Kind::City
                                        ? Houses(ridge, azimuth, slope, seed)
                                        : Hills(ridge, azimuth, slope, seed);
            if (!seen.inside) continue;
            const float haze = 0.45F * std::max(0.0F, 1 - slope / (ridge.base + ridge.amplitude));
            return Mix(seen.colour, sky.horizon, haze * (i + 1 < sky.ridges.size() ? 1.0F : 0.5F));
        }
    }
    Vec3 colour = Clear(sky, d);
    if (sky.stars > 0 && d.y > 0) colour += Stars(sky, d);
    return WithClouds(sky, d, colour);
}

// The map is the view from above into a curved mirror: its middle is the zenith, its rim the
// horizon.
SkyMap::SkyMap(const Sky& sky) {
    texels.reserve(static_cast<std::size_t>(kMapSize) * kMapSize);
    for (int y = 0; y < kMapSize; ++y) {
        for (int x = 0; x < kMapSize; ++x) {
            const float u = (static_cast<float>(x) + 0.5F) / kMapSize * 2 - 1;
            const float v = (static_cast<float>(y) + 0.5F) / kMapSize * 2 - 1;
            const float r2 = std::min(u * u + v * v, 1.0F);
            const Vec3 d{2 * u / (1 + r2), (1 - r2) / (1 + r2), 2 * v / (1 + r2)};
            texels.push_back(SkyColour(sky, Normalised({d.x, std::max(d.y, 0.004F), d.z})));
        }
    }
}

Vec3 SkyMap::Look(const Vec3& d) const {
    const float k = 0.5F / (1 + std::max(d.y, 0.0F));
    const auto texel = [](float v) {
        return static_cast<std::size_t>(
            std::clamp((v + 0.5F) * kMapSize, 0.0F, static_cast<float>(kMapSize - 1)));
    };
    return texels[texel(d.z * k) * kMapSize + texel(d.x * k)];
}

}  // namespace marvolen::scenes
