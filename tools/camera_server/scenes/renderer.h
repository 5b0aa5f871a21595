#pragma once

// Turns a scene into pictures by following rays of light backwards. What stands still is worked out
// once; for each picture of the loop only the waves, the surroundings of what moves and the
// sensor's noise are added.

#include "tools/camera_server/scenes/scene.h"
#include "tools/camera_server/scenes/shape_tree.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace marvolen::scenes {

// width * height pixels 0xFFRRGGBB, row by row from the top.
using Pixels = std::vector<std::uint32_t>;

// The mean of some pixels.
std::uint32_t Average(const std::uint32_t* colours, std::size_t count);

class Renderer {
public:
    // Does the work for what stands still, a few tenths of a second.
    Renderer(Scene scene, int width, int height);

    // The picture at a phase of the loop, without noise.
    Pixels Render(float phase) const;

    // Adds the camera's own grain; different seeds, different grain.
    void AddNoise(Pixels& pixels, std::uint32_t seed) const;

    const Scene& TheScene() const { return scene; }

private:
    struct Colours {
        Vec3 lit;
        Vec3 shaded;  // as lit, but with the key light blocked
    };

    struct StillPixel {
        std::uint32_t lit = 0;
        std::uint32_t shaded = 0;
        float distance = 0;  // negative: nothing there but sky
        bool keyReaches = false;
    };

    struct Rect {
        int left = 0, top = 0, right = -1, bottom = -1;  // inclusive

        bool Holds(int x, int y) const {
            return x >= left && x <= right && y >= top && y <= bottom;
        }
    };

    struct Mover {
        const Shape* shape;
        Rect rect;  // where it, or its shadow, can be seen
    };
    using Movers = std::vector<Mover>;

    void RenderStill();
    void SmoothOcclusion(std::vector<float>& occlusion,
                         const std::vector<const Shape*>& seen) const;
    void SoftenEdges(const std::vector<const Shape*>& seen, const std::vector<Vec3>& normals);
    void PrepareWater(const std::vector<const Shape*>& seen);

    Ray PixelRay(float x, float y) const;
    bool Project(const Vec3& point, float& x, float& y) const;
    Colours Shade(const Ray& ray, const Hit& hit, const Shape& shape, float occlusion,
                  bool keyReaches, int bounces) const;
    Vec3 Trace(const Ray& ray, int bounces) const;
    float Occlusion(const Vec3& point, const Vec3& normal, int pattern) const;
    bool KeyReaches(const Vec3& point, const Vec3& normal) const;
    std::uint32_t Develop(const Vec3& light, int x, int y) const;

    void RenderWater(float phase, Pixels& pixels) const;
    void RenderMoving(float phase, Pixels& pixels) const;
    void RenderWeather(float phase, Pixels& pixels) const;
    void AddBounds(const Shape& shape, bool flatten, Rect& rect) const;
    std::uint32_t MovingPixel(int x, int y, const Movers& bodies, const Movers& shadows,
                              std::uint32_t behind) const;
    bool MovingSample(float x, float y, const Movers& bodies, float nearest,
                      std::uint32_t& colour) const;

    Scene scene;
    const int width;
    const int height;
    ShapeTree tree;
    SkyMap skyMap;

    Vec3 viewRight, viewUp, viewAhead;
    float pixelSlope = 0;  // size of a pixel at one metre

    std::vector<StillPixel> stills;

    struct WaterPixel {
        std::uint32_t index;
        float x, z;        // on the water, metres
        float footprint;   // the pixel's size there, metres
        float bend, gust;  // unevenness of the waves
        float mirrored;    // share of light that is mirrored by calm water
        float clear;       // what haze leaves of it
        Vec3 direction;    // of sight
    };
    std::vector<WaterPixel> water;
    std::vector<Vec3> mirror;  // per pixel: what calm water shows there; x < 0 where there is none
    Vec3 waterColour;
};

}  // namespace marvolen::scenes
