#pragma once

// Bodies sorted into nested boxes, so that a ray meets few of them.

#include "tools/camera_server/scenes/shape.h"

#include <cstdint>
#include <vector>

namespace marvolen::scenes {

class ShapeTree {
public:
    // Takes the bodies over and sorts them. Grounds are kept apart.
    void Build(std::vector<Shape> bodies);

    // The first body the ray meets nearer than hit.distance; null when it meets none.
    const Shape* First(const Ray& ray, Hit& hit) const;

    // Whether any shadow-casting body lies on the ray before distance. Grounds don't count.
    bool Blocked(const Ray& ray, float distance) const;

private:
    struct Node {
        Vec3 low;
        Vec3 high;
        std::uint32_t first = 0;  // leaf: its first body; else its left child, the right one behind
        std::uint32_t count = 0;  // leaf: its bodies; else 0
    };

    std::uint32_t Divide(std::uint32_t first, std::uint32_t count);
    void Split(std::uint32_t node, std::uint32_t first, std::uint32_t count);

    std::vector<Shape> grounds;
    std::vector<Shape> shapes;
    std::vector<Node> nodes;
};

}  // namespace marvolen::scenes
