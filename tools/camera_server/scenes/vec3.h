#pragma once

// Three floats: points and directions in metres (x right, y up, z away from the viewer of an
// unturned camera), and colours as linear light.

#include <algorithm>
#include <cmath>

namespace marvolen::scenes {

struct Vec3 {
    float x = 0;
    float y = 0;
    float z = 0;

    Vec3& operator+=(const Vec3& o) { return *this = {x + o.x, y + o.y, z + o.z}; }
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(const Vec3& a, const Vec3& b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec3 operator*(const Vec3& a, float s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline Vec3 operator-(const Vec3& a) {
    return {-a.x, -a.y, -a.z};
}

inline float Dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float Length(const Vec3& a) {
    return std::sqrt(Dot(a, a));
}
inline Vec3 Normalised(const Vec3& a) {
    return a * (1.0F / std::max(Length(a), 1e-12F));
}
inline Vec3 Mix(const Vec3& a, const Vec3& b, float t) {
    return a + (b - a) * t;
}
inline float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}
inline Vec3 Reflect(const Vec3& d, const Vec3& n) {
    return d - n * (2 * Dot(d, n));
}
inline float Smooth(float low, float high, float value) {
    const float t = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}

// A colour as drawing programs give it: 0xRRGGBB, roughly undone of its gamma.
inline Vec3 Rgb(unsigned hex) {
    const auto channel = [hex](int shift) {
        const float v = static_cast<float>(hex >> shift & 0xFF) / 255.0F;
        return v * v * (0.8F + 0.2F * v);
    };
    return {channel(16), channel(8), channel(0)};
}

}  // namespace marvolen::scenes
