#include "tools/camera_server/scenes/surface.h"

#include "tools/camera_server/scenes/noise.h"

#include <cstdint>

namespace marvolen::scenes {
namespace {

// A point on a face: u to the side, v up from the body's foot, or the plan on level faces.
struct FacePoint {
    float u = 0;
    float v = 0;
    bool level = false;
};

FacePoint OnFace(const Shape& s, const Vec3& point, const Vec3& normal) {
    const Vec3 local = s.ToLocal(point - s.centre);
    const Vec3 n = s.ToLocal(normal);
    if (std::abs(n.y) > 0.75F) return {local.x, local.z, true};
    const float side = static_cast<float>(s.seed % 29);
    if (std::abs(n.x) > std::abs(n.z)) return {local.z + side, local.y + s.half.y, false};
    return {local.x + side * 2, local.y + s.half.y, false};
}

std::int32_t Cell(float v) {
    return static_cast<std::int32_t>(std::floor(v));
}
float Fraction(float v) {
    return v - std::floor(v);
}

// 1 inside a line of the given width at whole numbers of v, softened by the footprint.
float Line(float v, float width, float footprint) {
    const float d = std::abs(Fraction(v + 0.5F) - 0.5F);
    const float soft = std::max(footprint, 1e-4F);
    return Smooth(width / 2 + soft, width / 2 - soft * 0.5F, d) *
           std::min(1.0F, width / std::max(footprint, width));
}

// How much of a pattern of the given size can still be seen.
float Visible(float size, float footprint) {
    return Smooth(1.2F, 0.25F, footprint / size);
}

Vec3 Grain(const Vec3& colour, float u, float v, float scale, float amount, float footprint) {
    return colour * (1 + amount * 2 * (Fractal(u * scale, v * scale, 5, footprint * scale) - 0.5F));
}

Vec3 Asphalt(const Vec3& colour, float u, float v, float footprint) {
    Vec3 c = Grain(colour, u, v, 0.35F, 0.35F, footprint);
    c = Grain(c, u, v, 14.0F, 0.5F, footprint);
    const float crack = std::abs(Fractal(u * 0.5F, v * 0.5F, 4, footprint) - 0.5F);
    return c * (1 - 0.35F * Smooth(0.012F, 0.0F, crack) * Visible(0.1F, footprint));
}

Vec3 Grass(const Vec3& colour, float u, float v, float footprint) {
    const float patches = Fractal(u * 0.22F, v * 0.22F, 3, footprint * 0.22F);
    const float blades = Fractal(u * 9.0F, v * 9.0F, 4, footprint * 9);
    const float dry = Smooth(0.45F, 0.75F, Fractal(u * 0.6F + 40, v * 0.6F, 3, footprint * 0.6F));
    const Vec3 c = Mix(colour, colour * Vec3{1.7F, 1.25F, 0.9F}, dry * 0.6F);
    return c * (0.45F + 0.55F * patches + 0.75F * blades);
}

Vec3 Bricks(const Shape& s, const FacePoint& p, float footprint) {
    const float row = p.v / 0.08F;
    const float column = p.u / 0.24F + (Cell(row) & 1 ? 0.5F : 0.0F);
    const float each = HashUnit(Cell(column), Cell(row), s.seed);
    const float seen = Visible(0.12F, footprint);
    Vec3 c = s.colour * (1 + seen * 0.55F * (each - 0.5F));
    c = Grain(c, p.u, p.v, 1.0F, 0.25F, footprint);
    const float mortar =
        std::max(Line(row, 0.14F, footprint / 0.08F), Line(column, 0.06F, footprint / 0.24F));
    return Mix(c, Rgb(0xA8A098), mortar * seen * 0.8F + (1 - seen) * 0.15F);
}

Vec3 Slabs(const Vec3& colour, float u, float v, float size, std::uint32_t seed, float joint,
           float footprint) {
    const float x = u / size;
    const float y = v / size;
    const float each = HashUnit(Cell(x), Cell(y), seed);
    const float seen = Visible(size, footprint);
    const Vec3 c = Grain(colour * (1 + 0.22F * seen * (each - 0.5F)), u, v, 2.5F, 0.18F, footprint);
    const float f = footprint / size;
    const float edge = std::max(Line(x, joint / size, f), Line(y, joint / size, f));
    return c * (1 - 0.45F * edge);
}

Look FacadeLook(const Shape& s, const FacePoint& p, float footprint) {
    const Vec3 wall = Grain(s.colour, p.u, p.v, 0.8F, 0.16F, footprint);
    if (p.level || p.v < 0.6F) return {wall * 0.75F};
    const float wide = 1.7F + 1.3F * HashUnit(1, 1, s.seed);
    const float tall = 2.9F + 0.5F * HashUnit(2, 1, s.seed);
    const float x = p.u / wide;
    const float y = p.v / tall;
    const float inX = Fraction(x);
    const float inY = Fraction(y);
    const float soft = std::max(0.01F, footprint / wide);
    const float frame =
        Smooth(0.17F - soft, 0.17F + soft, inX) * Smooth(0.83F + soft, 0.83F - soft, inX) *
        Smooth(0.24F - soft, 0.24F + soft, inY) * Smooth(0.82F + soft, 0.82F - soft, inY);
    if (frame <= 0) {
        const float sill = Smooth(0.2F, 0.23F, inY) * Smooth(0.26F, 0.23F, inY);
        return {wall * (1 + 0.25F * sill)};
    }
    const float bar = Line(x * 2, 0.05F, soft) * 0.8F;
    const float chance = HashUnit(Cell(x), Cell(y), s.seed + 3);
    const float warm = HashUnit(Cell(x), Cell(y), s.seed + 4);
    Look glass{Rgb(0x27313A) * (0.6F + 0.8F * warm), 0.35F, {}};
    if (chance < s.parameter) {
        const float curtain = 0.55F + 0.45F * Noise(x * 14, y * 2);
        glass.glow = Mix(Rgb(0xFFB860), Rgb(0xFFF0D0), warm) * (0.35F + 0.75F * warm) * curtain;
        glass.gloss = 0.1F;
    } else if (chance > 0.72F && inY > 0.24F + 0.5F * warm) {
        glass.colour = Rgb(0xB9B3A6);  // a blind
        glass.gloss = 0.12F;
    }
    const float share = frame * (1 - bar);
    return {Mix(Rgb(0xDAD6CC) * 0.8F, glass.colour, 1 - bar) * frame + wall * (1 - frame),
            glass.gloss * share, glass.glow * share};
}

float Dash(float v, float length, float gap) {
    return Fraction(v / (length + gap)) < length / (length + gap) ? 1.0F : 0.0F;
}

// A stripe of paint at x = at, worn thin here and there.
float Stripe(float x, float at, float width, float z, float footprint) {
    const float d = std::abs(x - at);
    const float soft = std::max(footprint * 0.7F, 0.005F);
    return Smooth(width / 2 + soft, width / 2 - soft, d) *
           (0.65F + 0.35F * Noise(x * 7, z * 2.5F)) * std::min(1.0F, width / footprint);
}

Vec3 StreetColour(const Shape& s, const Vec3& p, float footprint) {
    const float x = std::abs(p.x);
    const float half = s.parameter > 0 ? s.parameter : 3.6F;
    if (x > half + 2.9F) return Grass(Rgb(0x59703A), p.x, p.z, footprint);
    if (x > half + 0.16F) return Slabs(Rgb(0x9C968C), p.x, p.z, 0.6F, s.seed, 0.02F, footprint);
    if (x > half) return Grain(Rgb(0xB8B4AA), p.x, p.z, 3, 0.2F, footprint);
    Vec3 c = Asphalt(s.colour, p.x, p.z, footprint);
    c = c * (1 - 0.18F * Smooth(0.5F, 0.0F, std::abs(std::abs(x - half / 2) - 0.75F)));
    c = c * Mix(0.72F, 1.0F, Smooth(0.0F, 0.5F, half - x));
    const float dashes = Stripe(p.x, 0, 0.13F, p.z, footprint) * Dash(p.z, 2.5F, 3.5F);
    const float edge = Stripe(x, half - 0.45F, 0.1F, p.z, footprint) * Dash(p.z, 1.0F, 1.0F);
    return Mix(c, Rgb(0xE4E2DA), std::max(dashes, edge));
}

Vec3 CarParkColour(const Shape& s, const Vec3& p, float footprint) {
    const float x = std::abs(p.x);
    if (x > 14.4F || p.z > 32) return Grass(Rgb(0x59703A), p.x, p.z, footprint);
    Vec3 c = Asphalt(s.colour, p.x, p.z, footprint);
    const float oil = Smooth(0.62F, 0.8F, Fractal(p.x * 0.9F, p.z * 0.9F, 3, footprint));
    c = c * (1 - 0.4F * oil);
    if (x < 3.0F || x > 14.0F) return c;
    const float bay = Line(p.z / 2.6F, 0.045F, footprint / 2.6F) * Smooth(3.0F, 3.02F, x) *
                      Smooth(13.2F, 13.1F, x);
    const float back = Stripe(x, 8.1F, 0.12F, p.z, footprint);
    return Mix(c, Rgb(0xE8E6DE), std::max(bay, back) * 0.9F);
}

Vec3 MotorwayColour(const Shape& s, const Vec3& p, float footprint) {
    const float x = std::abs(p.x);
    if (x > 14.5F) return Grass(Rgb(0x55702F), p.x, p.z, footprint);
    if (x < 1.1F) return Grass(Rgb(0x6B7A3C), p.x, p.z, footprint);
    Vec3 c = Asphalt(s.colour, p.x, p.z * 0.3F, footprint);
    for (const float lane : {5.2F, 8.9F}) {
        const float dashes = Stripe(x, lane, 0.16F, p.z, footprint) * Dash(p.z, 5, 8);
        c = Mix(c, Rgb(0xE8E6E0), dashes);
    }
    for (const float edge : {1.6F, 12.5F}) {
        c = Mix(c, Rgb(0xE8E6E0), Stripe(x, edge, 0.2F, p.z, footprint));
    }
    return c;
}

Vec3 PathColour(const Shape& s, const Vec3& p, float footprint) {
    const float bend = 1.3F * std::sin(p.z * 0.16F);
    const float half = 1.1F + 0.25F * Noise(p.z * 0.9F, 3);
    const float edge = Smooth(half + 0.15F, half - 0.15F, std::abs(p.x - bend));
    const Vec3 gravel = Grain(Rgb(0xB5A68C), p.x, p.z, 9, 0.55F, footprint);
    return Mix(Grass(s.colour, p.x, p.z, footprint), gravel, edge);
}

Vec3 WoodColour(const Shape& s, const FacePoint& p, float footprint) {
    const float board = p.u / 0.14F;
    const float each = HashUnit(Cell(board), 0, s.seed);
    const float seen = Visible(0.14F, footprint);
    const float rings = Fractal(p.u * 22, p.v * 1.1F + each * 30, 3, footprint * 22);
    const Vec3 c = s.colour * (0.72F + 0.4F * rings + 0.28F * seen * each);
    return c * (1 - 0.5F * seen * Line(board, 0.07F, footprint / 0.14F));
}

Vec3 SheetColour(const Shape& s, const FacePoint& p, float footprint) {
    const float rib = std::sin(p.u * 6.2832F / 0.2F) * Visible(0.12F, footprint);
    const Vec3 c = Grain(s.colour * (1 + 0.22F * rib), p.u, p.v, 0.7F, 0.2F, footprint);
    const float rust = Smooth(0.66F, 0.82F, Fractal(p.u * 0.8F, p.v * 0.35F + 9, 4, footprint));
    return Mix(c, Rgb(0x7A5236), rust * 0.5F);
}

Look LedsLook(const Shape& s, const FacePoint& p, float footprint) {
    const float unit = p.v / 0.18F;
    const float seen = Visible(0.06F, footprint);
    Vec3 c = s.colour * (1 - 0.5F * Line(unit, 0.12F, footprint / 0.18F));
    c = c * (1 + 0.3F * (HashUnit(Cell(unit), 5, s.seed) - 0.5F));
    const float column = p.u / 0.045F;
    const float inX = Fraction(column) - 0.5F;
    const float inY = Fraction(unit) - 0.5F;
    const float chance = HashUnit(Cell(column), Cell(unit), s.seed);
    Look look{c, 0.05F, {}};
    if (chance > 0.55F && inX * inX + inY * inY * 9 < 0.12F) {
        const Vec3 light = chance > 0.95F   ? Rgb(0xFFB030)
                           : chance > 0.85F ? Rgb(0x50A0FF)
                                            : Rgb(0x50FF70);
        look.glow = light * (0.8F * seen);
    }
    return look;
}

Look ScreenLook(const Shape& s, const FacePoint& p, float footprint) {
    const float text =
        Fraction(p.v / 0.07F) > 0.45F && Noise(p.u * 26, std::floor(p.v / 0.07F) * 3.7F) > 0.52F
            ? 1.0F
            : 0.35F;
    return {Rgb(0x101418), 0.05F, s.colour * Mix(0.5F, text, Visible(0.05F, footprint))};
}

}  // namespace

Look LookOf(const Shape& s, const Vec3& point, const Vec3& normal, float footprint) {
    const FacePoint p = s.kind == Shape::Kind::Ground ? FacePoint{point.x, point.z, true}
                                                      : OnFace(s, point, normal);
    switch (s.surface) {
        case Surface::Plain:
            return {Grain(s.colour, p.u, p.v, 1.3F, 0.1F, footprint), s.parameter};
        case Surface::Asphalt:
            return {Asphalt(s.colour, p.u, p.v, footprint), s.parameter};
        case Surface::Concrete: {
            const float streak = Fractal(p.u * 2.5F, p.v * 0.15F, 3, footprint);
            const Vec3 c = Grain(s.colour, p.u, p.v, 0.9F, 0.28F, footprint);
            return {c * (0.86F + 0.28F * streak), s.parameter};
        }
        case Surface::Brick:
            return {Bricks(s, p, footprint)};
        case Surface::Grass:
            return {Grass(s.colour, point.x, point.z, footprint)};
        case Surface::Leaves: {
            const float fine =
                Fractal((point.x + point.y) * 9, (point.z - point.y) * 9, 3, footprint * 6);
            return {s.colour * (0.1F + 1.7F * fine)};
        }
        case Surface::Water:
            return {s.colour, 1.0F};
        case Surface::Wood:
            return {WoodColour(s, p, footprint), s.parameter};
        case Surface::SheetMetal:
            return {SheetColour(s, p, footprint), 0.04F};
        case Surface::Facade:
            return FacadeLook(s, p, footprint);
        case Surface::Tiles:
            return {Slabs(s.colour, p.u, p.v, 0.6F, s.seed, 0.015F, footprint), s.parameter};
        case Surface::RoofTiles: {
            const float row = p.v / 0.3F;
            const float shade = 0.75F + 0.4F * Fraction(row) * Visible(0.3F, footprint);
            const float each = HashUnit(Cell(p.u / 0.25F), Cell(row), s.seed);
            return {
                Grain(s.colour * (shade + 0.25F * (each - 0.5F)), p.u, p.v, 1, 0.2F, footprint)};
        }
        case Surface::Gravel:
            return {Grain(Grain(s.colour, p.u, p.v, 8, 0.8F, footprint), p.u, p.v, 0.5F, 0.3F,
                          footprint)};
        case Surface::Sand:
            return {Grain(Grain(s.colour, p.u, p.v, 0.4F, 0.3F, footprint), p.u, p.v, 12, 0.2F,
                          footprint)};
        case Surface::Paint:
            return {s.colour, 0.08F};
        case Surface::Glass:
            return {s.colour * 0.3F, 0.45F};
        case Surface::Glowing:
            return {s.colour * 0.3F, 0, s.colour * s.parameter};
        case Surface::Leds:
            return LedsLook(s, p, footprint);
        case Surface::Street:
            return {StreetColour(s, point, footprint), 0.02F};
        case Surface::CarPark:
            return {CarParkColour(s, point, footprint), 0.01F};
        case Surface::Motorway:
            return {MotorwayColour(s, point, footprint), 0.01F};
        case Surface::Path:
            return {PathColour(s, point, footprint)};
        case Surface::Crates: {
            const float edge =
                std::max(Line(p.u / 0.9F, 0.08F, footprint), Line(p.v / 0.7F, 0.1F, footprint));
            const float each = HashUnit(Cell(p.u / 0.9F), Cell(p.v / 0.7F), s.seed);
            const float kind = HashUnit(Cell(p.u / 0.9F), Cell(p.v / 0.7F), s.seed + 1);
            Vec3 c = Mix(Rgb(0xA67C4A), Rgb(0xC7AE86), each);
            if (kind > 0.85F) c = Rgb(0x3F6FA0) * (0.6F + each);
            if (kind < 0.08F) c = Rgb(0x4E8A55) * (0.6F + each);
            return {Grain(c, p.u, p.v, 4, 0.2F, footprint) * (1 - 0.55F * edge)};
        }
        case Surface::Screen:
            return ScreenLook(s, p, footprint);
    }
    return {s.colour};
}

}  // namespace marvolen::scenes
