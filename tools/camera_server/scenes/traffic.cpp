#include "tools/camera_server/scenes/traffic.h"

#include <numbers>

namespace marvolen::scenes {
namespace {

constexpr float kPi = std::numbers::pi_v<float>;

float Part(float v) {
    return v - std::floor(v);
}

template <typename Place>
void AlongLane(const Lane& lane, float phase, float seconds, Place place) {
    const float way = lane.speed * seconds;
    const float length = std::abs(lane.to - lane.from);
    const float direction = lane.to > lane.from ? 1.0F : -1.0F;
    for (float at = Part(phase + lane.offset) * way; at < length; at += way) {
        place(lane.from + direction * at, direction);
    }
}

}  // namespace

void AddTraffic(Shapes& moving, const Lane& lane, float phase, float seconds) {
    AlongLane(lane, phase, seconds, [&](float z, float direction) {
        AddCar(moving, {lane.x, 0, z}, direction > 0 ? 0 : kPi, lane.car);
    });
}

void AddCrossTraffic(Shapes& moving, const Lane& lane, float phase, float seconds) {
    AlongLane(lane, phase, seconds, [&](float x, float direction) {
        AddCar(moving, {x, 0, lane.x}, direction * kPi / 2, lane.car);
    });
}

float ToAndFro(float phase) {
    return 0.5F - 0.5F * std::cos(2 * kPi * phase);
}

float Swing(float phase, int n, float shift) {
    return 0.5F + 0.5F * std::sin(2 * kPi * (phase * static_cast<float>(n) + shift));
}

void AddWalker(Shapes& moving, const Vec3& from, const Vec3& to, float phase, float seconds,
               const PersonLook& look) {
    const Vec3 way = to - from;
    const float steps = 2 * std::max(1.0F, std::round(seconds));
    AddPerson(moving, from + way * phase, std::atan2(way.x, way.z), phase * steps, look);
}

void AddStander(Shapes& moving, const Vec3& at, float heading, float phase,
                const PersonLook& look) {
    const float lean = Swing(phase, 1, at.x);
    AddPerson(moving, at + Vec3{0.05F * (lean - 0.5F), 0, 0},
              heading + 0.5F * (Swing(phase, 1, at.z) - 0.5F), 0.12F * (lean - 0.5F), look);
}

}  // namespace marvolen::scenes
