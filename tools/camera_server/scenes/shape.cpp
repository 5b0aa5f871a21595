#include "tools/camera_server/scenes/shape.h"

#include "tools/camera_server/scenes/noise.h"

#include <array>
#include <utility>

namespace marvolen::scenes {
namespace {

constexpr float kNear = 1e-3F;

struct LocalRay {
    Vec3 o;
    Vec3 d;
};

// Clips the ray's stretch [in, out] against a half space; n is the normal where it enters.
bool Clip(const LocalRay& ray, const Vec3& n, float offset, float& in, float& out, Vec3& normal) {
    const float speed = Dot(ray.d, n);
    const float away = offset - Dot(ray.o, n);
    if (std::abs(speed) < 1e-9F) return away >= 0;
    const float t = away / speed;
    if (speed < 0) {
        if (t > in) {
            in = t;
            normal = n;
        }
    } else if (t < out) {
        out = t;
    }
    return in <= out;
}

bool MeetBlock(const Shape& s, const LocalRay& ray, Hit& hit) {
    float in = kNear;
    float out = hit.distance;
    Vec3 normal;
    const float leanX = s.half.x * s.taperX / (2 * s.half.y);
    const float leanZ = s.half.z * s.taperZ / (2 * s.half.y);
    const float wide = s.half.x * (1 - s.taperX / 2);
    const float deep = s.half.z * (1 - s.taperZ / 2);
    if (!Clip(ray, {0, 1, 0}, s.half.y, in, out, normal) ||
        !Clip(ray, {0, -1, 0}, s.half.y, in, out, normal) ||
        !Clip(ray, {1, leanX, 0}, wide, in, out, normal) ||
        !Clip(ray, {-1, leanX, 0}, wide, in, out, normal) ||
        !Clip(ray, {0, leanZ, 1}, deep, in, out, normal) ||
        !Clip(ray, {0, leanZ, -1}, deep, in, out, normal) || in <= kNear) {
        return false;
    }
    hit = {in, Normalised(s.ToWorld(normal))};
    return true;
}

// Leaves leave gaps: a point of the crown is there or not.
bool IsLeaf(const Shape& s, const Vec3& p) {
    const float offset = static_cast<float>(s.seed % 97);
    const float twigs = Noise((p.x + p.y * 0.71F) * 4 + offset, (p.z + p.y * 0.83F) * 4);
    const float leaves = Noise((p.x - p.y * 0.53F) * 17 + offset, (p.z - p.y * 0.9F) * 17);
    return twigs * 0.42F + leaves * 0.58F > 0.47F;
}

bool MeetEllipsoid(const Shape& s, const LocalRay& ray, Hit& hit) {
    const Vec3 inverse{1 / s.half.x, 1 / s.half.y, 1 / s.half.z};
    const Vec3 o = ray.o * inverse;
    const Vec3 d = ray.d * inverse;
    const float a = Dot(d, d);
    const float b = Dot(o, d);
    const float root = b * b - a * (Dot(o, o) - 1);
    if (root <= 0) return false;
    const float spread = std::sqrt(root);
    for (const float t : {(-b - spread) / a, (-b + spread) / a}) {
        if (t <= kNear || t >= hit.distance) continue;
        const Vec3 p = o + d * t;
        if (s.surface == Surface::Leaves && !IsLeaf(s, p * s.half)) continue;
        hit = {t, Normalised(s.ToWorld(p * inverse))};
        return true;
    }
    return false;
}

bool MeetCylinder(const Shape& s, const LocalRay& ray, Hit& hit) {
    float in = kNear;
    float out = hit.distance;
    Vec3 normal;
    if (!Clip(ray, {0, 1, 0}, s.half.y, in, out, normal) ||
        !Clip(ray, {0, -1, 0}, s.half.y, in, out, normal)) {
        return false;
    }
    const Vec3 inverse{1 / s.half.x, 0, 1 / s.half.z};
    const Vec3 o = ray.o * inverse;
    const Vec3 d = ray.d * inverse;
    const float a = Dot(d, d);
    const float b = Dot(o, d);
    const float c = Dot(o, o) - 1;
    if (a < 1e-9F) {
        if (c > 0) return false;
    } else {
        const float root = b * b - a * c;
        if (root <= 0) return false;
        const float spread = std::sqrt(root);
        if ((-b - spread) / a > in) {
            in = (-b - spread) / a;
            normal = (o + d * in) * inverse;
        }
        out = std::min(out, (-b + spread) / a);
    }
    if (in > out || in <= kNear) return false;
    hit = {in, Normalised(s.ToWorld(normal))};
    return true;
}

}  // namespace

void Shape::TurnAbout(const Vec3& pivot, float radians) {
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    const auto turn = [c, s](const Vec3& v) {
        return Vec3{c * v.x + s * v.z, v.y, c * v.z - s * v.x};
    };
    centre = pivot + turn(centre - pivot);
    right = turn(right);
    up = turn(up);
    ahead = turn(ahead);
}

void Shape::Tip(float radians) {
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    const Vec3 oldRight = right;
    right = right * c + up * s;
    up = up * c - oldRight * s;
}

Vec3 Shape::Bounds() const {
    const float wide = half.x * std::max(1.0F, 1 - taperX);
    const float deep = half.z * std::max(1.0F, 1 - taperZ);
    const auto extent = [this, wide, deep](float a, float b, float c) {
        return std::abs(a) * wide + std::abs(b) * half.y + std::abs(c) * deep;
    };
    return {extent(right.x, up.x, ahead.x), extent(right.y, up.y, ahead.y),
            extent(right.z, up.z, ahead.z)};
}

bool Intersect(const Shape& shape, const Ray& ray, Hit& hit) {
    if (shape.kind == Shape::Kind::Ground) {
        if (ray.direction.y > -1e-6F) return false;
        const float t = (shape.centre.y - ray.origin.y) / ray.direction.y;
        if (t <= kNear || t >= hit.distance) return false;
        hit = {t, {0, 1, 0}};
        return true;
    }
    const LocalRay local{shape.ToLocal(ray.origin - shape.centre), shape.ToLocal(ray.direction)};
    switch (shape.kind) {
        case Shape::Kind::Ellipsoid:
            return MeetEllipsoid(shape, local, hit);
        case Shape::Kind::Cylinder:
            return MeetCylinder(shape, local, hit);
        default:
            return MeetBlock(shape, local, hit);
    }
}

}  // namespace marvolen::scenes
