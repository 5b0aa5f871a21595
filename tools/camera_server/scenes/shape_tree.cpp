#include "tools/camera_server/scenes/shape_tree.h"

#include <array>
#include <limits>
#include <utility>

namespace marvolen::scenes {
namespace {

constexpr std::uint32_t kLeafShapes = 2;

struct InverseRay {
    Vec3 origin;
    Vec3 inverse;
};

struct Bounds {
    Vec3 low{1e9F, 1e9F, 1e9F};
    Vec3 high{-1e9F, -1e9F, -1e9F};

    void Add(const Shape& shape) {
        const Vec3 extent = shape.Bounds();
        const Vec3 a = shape.centre - extent;
        const Vec3 b = shape.centre + extent;
        low = {std::min(low.x, a.x), std::min(low.y, a.y), std::min(low.z, a.z)};
        high = {std::max(high.x, b.x), std::max(high.y, b.y), std::max(high.z, b.z)};
    }

    float Area() const {
        const Vec3 size = high - low;
        return size.x * size.y + size.y * size.z + size.z * size.x;
    }
};

InverseRay Invert(const Ray& ray) {
    const auto invert = [](float v) { return 1.0F / (std::abs(v) < 1e-9F ? 1e-9F : v); };
    return {ray.origin,
            {invert(ray.direction.x), invert(ray.direction.y), invert(ray.direction.z)}};
}

// The distance at which the ray enters the box; beyond limit when it doesn't.
float Enter(const InverseRay& ray, const Vec3& low, const Vec3& high, float limit) {
    const Vec3 a = (low - ray.origin) * ray.inverse;
    const Vec3 b = (high - ray.origin) * ray.inverse;
    const float in = std::max({std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z), 0.0F});
    const float out = std::min({std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z), limit});
    return in <= out ? in : limit + 1;
}

}  // namespace

void ShapeTree::Build(std::vector<Shape> bodies) {
    for (Shape& body : bodies) {
        (body.kind == Shape::Kind::Ground ? grounds : shapes).push_back(std::move(body));
    }
    nodes.clear();
    if (shapes.empty()) return;
    nodes.reserve(shapes.size() * 2);
    nodes.emplace_back();
    Split(0, 0, static_cast<std::uint32_t>(shapes.size()));
}

void ShapeTree::Split(std::uint32_t node, std::uint32_t first, std::uint32_t count) {
    Bounds bounds;
    for (std::uint32_t i = first; i < first + count; ++i) bounds.Add(shapes[i]);
    nodes[node] = {bounds.low, bounds.high, first, count};
    if (count <= kLeafShapes) return;

    const std::uint32_t middle = Divide(first, count);
    const auto left = static_cast<std::uint32_t>(nodes.size());
    nodes.resize(nodes.size() + 2);
    nodes[node].first = left;
    nodes[node].count = 0;
    Split(left, first, middle);
    Split(left + 1, first + middle, count - middle);
}

// Sorts the bodies so that the two halves, split where the return value says, are cheap to pass:
// the fewer bodies in the larger boxes the better (the surface area heuristic).
std::uint32_t ShapeTree::Divide(std::uint32_t first, std::uint32_t count) {
    const auto begin = shapes.begin() + first;
    const auto sortAlong = [&](float Vec3::*axis) {
        std::sort(begin, begin + count, [axis](const Shape& a, const Shape& b) {
            return a.centre.*axis < b.centre.*axis;
        });
    };
    float Vec3::*bestAxis = &Vec3::x;
    std::uint32_t bestAt = count / 2;
    // Neither half gets less than an eighth, which bounds the tree's depth.
    const std::uint32_t least = std::max(1U, count / 8);
    float bestCost = std::numeric_limits<float>::max();
    std::vector<float> areas(count);
    for (float Vec3::*const axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
        sortAlong(axis);
        Bounds behind;
        for (std::uint32_t i = count; i-- > 1;) {
            behind.Add(shapes[first + i]);
            areas[i] = behind.Area();
        }
        Bounds before;
        for (std::uint32_t i = 1; i < count; ++i) {
            before.Add(shapes[first + i - 1]);
            const float cost =
                before.Area() * static_cast<float>(i) + areas[i] * static_cast<float>(count - i);
            if (cost >= bestCost || i < least || i > count - least) continue;
            bestCost = cost;
            bestAxis = axis;
            bestAt = i;
        }
    }
    sortAlong(bestAxis);
    return bestAt;
}

const Shape* ShapeTree::First(const Ray& ray, Hit& hit) const {
    const Shape* found = nullptr;
    for (const Shape& ground : grounds) {
        if (Intersect(ground, ray, hit)) found = &ground;
    }
    if (nodes.empty()) return found;
    const InverseRay inverse = Invert(ray);
    std::array<std::pair<std::uint32_t, float>, 64> stack;
    std::size_t depth = 0;
    stack[depth++] = {0, Enter(inverse, nodes[0].low, nodes[0].high, hit.distance)};
    while (depth > 0) {
        const auto [index, enter] = stack[--depth];
        if (enter > hit.distance) continue;
        const Node& node = nodes[index];
        for (std::uint32_t i = 0; i < node.count; ++i) {
            if (Intersect(shapes[node.first + i], ray, hit)) found = &shapes[node.first + i];
        }
        if (node.count > 0) continue;
        const Node& left = nodes[node.first];
        const Node& right = nodes[node.first + 1];
        std::pair near{node.first, Enter(inverse, left.low, left.high, hit.distance)};
        std::pair far{node.first + 1, Enter(inverse, right.low, right.high, hit.distance)};
        if (near.second > far.second) std::swap(near, far);
        if (far.second <= hit.distance) stack[depth++] = far;
        if (near.second <= hit.distance) stack[depth++] = near;
    }
    return found;
}

bool ShapeTree::Blocked(const Ray& ray, float distance) const {
    if (nodes.empty()) return false;
    const InverseRay inverse = Invert(ray);
    std::array<std::uint32_t, 64> stack;
    std::size_t depth = 0;
    stack[depth++] = 0;
    while (depth > 0) {
        const Node& node = nodes[stack[--depth]];
        if (Enter(inverse, node.low, node.high, distance) > distance) continue;
        for (std::uint32_t i = 0; i < node.count; ++i) {
            const Shape& shape = shapes[node.first + i];
            Hit hit{distance, {}};
            if (shape.castsShadow && Intersect(shape, ray, hit)) return true;
        }
        if (node.count > 0) continue;
        stack[depth++] = node.first;
        stack[depth++] = node.first + 1;
    }
    return false;
}

}  // namespace marvolen::scenes
