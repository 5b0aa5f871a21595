#include "tools/camera_server/scenes/noise.h"
#include "tools/camera_server/scenes/overlay.h"
#include "tools/camera_server/scenes/renderer.h"
#include "tools/camera_server/scenes/scene_list.h"
#include "tools/camera_server/scenes/shape_tree.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

namespace marvolen::scenes {
namespace {

Vec3 RandomVec(int n, std::uint32_t kind) {
    return Vec3{HashUnit(n, 1, kind), HashUnit(n, 2, kind), HashUnit(n, 3, kind)} -
           Vec3{0.5F, 0.5F, 0.5F};
}

std::vector<Shape> RandomShapes(int count) {
    std::vector<Shape> shapes;
    for (int n = 0; n < count; ++n) {
        Shape shape;
        shape.kind = static_cast<Shape::Kind>(n % 3);
        shape.centre = RandomVec(n, 1) * 20;
        shape.half = RandomVec(n, 2) * 2 + Vec3{1.2F, 1.2F, 1.2F};
        shape.taperX = HashUnit(n, 4, 3) - 0.4F;
        shape.taperZ = HashUnit(n, 5, 3) - 0.4F;
        shape.castsShadow = n % 5 != 0;
        shape.Tip(HashUnit(n, 6));
        shape.TurnAbout({}, HashUnit(n, 7) * 6);
        shapes.push_back(shape);
    }
    return shapes;
}

TEST(ShapeTreeTest, FindsWhatLookingAtEveryBodyFinds) {
    const std::vector<Shape> shapes = RandomShapes(60);
    ShapeTree tree;
    tree.Build(shapes);
    int found = 0;
    for (int n = 0; n < 2000; ++n) {
        const Ray ray{RandomVec(n, 8) * 30, Normalised(RandomVec(n, 9))};
        Hit expected{100, {}};
        bool blocked = false;
        for (const Shape& shape : shapes) {
            Intersect(shape, ray, expected);
            Hit near{7, {}};
            blocked = blocked || (shape.castsShadow && Intersect(shape, ray, near));
        }
        Hit hit{100, {}};
        EXPECT_EQ(tree.First(ray, hit) != nullptr, expected.distance < 100);
        EXPECT_EQ(hit.distance, expected.distance);
        EXPECT_EQ(tree.Blocked(ray, 7), blocked);
        found += expected.distance < 100;
    }
    EXPECT_GT(found, 200);
    EXPECT_LT(found, 1900);
}

TEST(ShapeTest, HitsLieOnTheBodyWithNormalsTowardsTheRay) {
    const std::vector<Shape> shapes = RandomShapes(30);
    for (int n = 0; n < 30; ++n) {
        const Shape& shape = shapes[static_cast<std::size_t>(n)];
        const Vec3 from = shape.centre + Normalised(RandomVec(n, 11)) * 30;
        const Ray ray{from, Normalised(shape.centre - from)};
        Hit hit{100, {}};
        ASSERT_TRUE(Intersect(shape, ray, hit)) << n;
        EXPECT_LT(Dot(hit.normal, ray.direction), 0) << n;
        EXPECT_NEAR(Length(hit.normal), 1, 1e-3) << n;
        const Vec3 off = ray.origin + ray.direction * hit.distance - shape.centre;
        const Vec3 bounds = shape.Bounds();
        EXPECT_LE(std::abs(off.x), bounds.x + 0.01F) << n;
        EXPECT_LE(std::abs(off.y), bounds.y + 0.01F) << n;
        EXPECT_LE(std::abs(off.z), bounds.z + 0.01F) << n;
    }
}

// The mean difference of two pictures' green, of 255.
double Difference(const Pixels& a, const Pixels& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += std::abs(static_cast<int>(a[i] >> 8 & 0xFF) - static_cast<int>(b[i] >> 8 & 0xFF));
    }
    return sum / static_cast<double>(a.size());
}

TEST(RendererTest, EverySceneMovesAndItsLoopEndsWhereItBegan) {
    for (int channel = 0; channel < 16; ++channel) {
        for (const float seconds : {2.0F, 3.3F}) {
            const Renderer renderer(SceneFor(channel, 0, seconds), 144, 96);
            // Animals that run to and fro turn round just there; nothing else may jump.
            const Pixels start = renderer.Render(0);
            EXPECT_EQ(start.size(), 144U * 96U);
            EXPECT_LT(Difference(start, renderer.Render(1)), 0.12) << channel << ' ' << seconds;
            EXPECT_GT(Difference(start, renderer.Render(0.4F)), 0.05) << channel << ' ' << seconds;
        }
    }
}

TEST(OverlayTest, TextIsDrawnWithinAnyPicture) {
    for (const auto& [width, height] :
         {std::pair{704, 480}, std::pair{176, 120}, std::pair{9, 7}}) {
        const Overlay overlay(7, "A name far too long for a picture of any width, and then some",
                              width, height);
        const auto count = static_cast<std::size_t>(width * height);
        Pixels seven(count, 0xFF406080U);
        Pixels eight = seven;
        overlay.Draw(seven, 45296, 7);
        overlay.Draw(eight, 45296, 8);
        EXPECT_NE(seven, Pixels(count, 0xFF406080U));
        EXPECT_TRUE(seven != eight || width < 100);
        for (const std::uint32_t pixel : seven) ASSERT_EQ(pixel >> 24, 0xFFU);
    }
}

}  // namespace
}  // namespace marvolen::scenes
