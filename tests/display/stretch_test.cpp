#include "display/stretch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace marvolen {
namespace {

// A picture with rows padded like a bitmap's; padding is 0xEE, to show up when it is used.
struct Picture {
    Picture(int pictureWidth, int pictureHeight)
        : width(pictureWidth),
          height(pictureHeight),
          stride((static_cast<std::size_t>(width) * 3 + 3) / 4 * 4),
          bytes(stride * static_cast<std::size_t>(height), 0xEE) {}

    std::uint8_t& At(int x, int y, int channel) {  // y from the top
        return bytes[static_cast<std::size_t>(height - 1 - y) * stride +
                     static_cast<std::size_t>(x * 3 + channel)];
    }
    template <typename Value>
    void Fill(Value value) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                for (int c = 0; c < 3; ++c) At(x, y, c) = static_cast<std::uint8_t>(value(x, y, c));
            }
        }
    }
    BottomUpPicture View() const { return {bytes.data(), width, height, stride}; }

    int width;
    int height;
    std::size_t stride;
    std::vector<std::uint8_t> bytes;
};

int Channel(std::uint32_t pixel, int channel) {
    return static_cast<int>(pixel >> (8 * channel) & 0xFF);
}

// The exact share of source pixel k in target pixel i.
double Share(int source, int target, int i, int k) {
    const double scale = static_cast<double>(source) / target;
    if (source >= target) {
        const double begin = std::max<double>(k, i * scale);
        const double end = std::min<double>(k + 1, (i + 1) * scale);
        return std::max(0.0, end - begin) / scale;
    }
    const double centre = std::clamp((i + 0.5) * scale - 0.5, 0.0, source - 1.0);
    return std::max(0.0, 1 - std::abs(centre - k));
}

// One axis of the model: target x source shares.
std::vector<std::vector<double>> Shares(int source, int target) {
    std::vector<std::vector<double>> shares(static_cast<std::size_t>(target));
    for (int i = 0; i < target; ++i) {
        for (int k = 0; k < source; ++k) {
            shares[static_cast<std::size_t>(i)].push_back(Share(source, target, i, k));
        }
    }
    return shares;
}

// The greatest difference between a stretched picture and the model's.
double GreatestError(Picture& source, const ScreenImage& image) {
    const auto across = Shares(source.width, image.width);
    const auto down = Shares(source.height, image.height);
    double greatest = 0;
    for (std::size_t y = 0; y < down.size(); ++y) {
        for (std::size_t x = 0; x < across.size(); ++x) {
            std::array<double, 3> exact{};
            for (int row = 0; row < source.height; ++row) {
                const double share = down[y][static_cast<std::size_t>(row)];
                if (share == 0) continue;
                for (int column = 0; column < source.width; ++column) {
                    const double weight = share * across[x][static_cast<std::size_t>(column)];
                    if (weight == 0) continue;
                    for (int c = 0; c < 3; ++c) {
                        exact[static_cast<std::size_t>(c)] += weight * source.At(column, row, c);
                    }
                }
            }
            const std::uint32_t pixel = image.pixels[y * across.size() + x];
            for (int c = 0; c < 3; ++c) {
                greatest = std::max(
                    greatest, std::abs(exact[static_cast<std::size_t>(c)] - Channel(pixel, c)));
            }
        }
    }
    return greatest;
}

TEST(Stretch, StaysCloseToTheExactResultAtEverySize) {
    const int sizes[][4] = {{1, 1, 1, 1},     {1, 1, 9, 5},      {2, 2, 1, 1},     {5, 3, 5, 3},
                            {7, 9, 14, 18},   {17, 33, 16, 32},  {40, 30, 13, 70}, {40, 30, 77, 11},
                            {352, 2, 117, 2}, {3, 480, 3, 150},  {64, 1, 1, 64},   {1, 64, 64, 1},
                            {2000, 2, 50, 1}, {2, 1000, 1, 999}, {100, 50, 99, 51}};
    std::mt19937 random(1);
    Stretcher stretcher;  // one for all, so that nothing of one size survives into another
    for (const auto& size : sizes) {
        SCOPED_TRACE(std::to_string(size[0]) + "x" + std::to_string(size[1]) + " to " +
                     std::to_string(size[2]) + "x" + std::to_string(size[3]));
        Picture source(size[0], size[1]);
        source.Fill([&](int, int, int) { return random(); });
        ScreenImage image;
        ASSERT_TRUE(image.Resize(size[2], size[3]));
        ASSERT_TRUE(stretcher.Stretch(source.View(), image));
        EXPECT_LE(GreatestError(source, image), 2.0);
    }
}

// One pixel has the average of 8192 here, weighed in 1/256.
TEST(Stretch, ReducesTheLargestPictureToAPoint) {
    Picture source(8192, 2);
    source.Fill([](int x, int, int) { return x < 2048 ? 255 : 0; });
    ScreenImage image;
    ASSERT_TRUE(image.Resize(1, 1));
    ASSERT_TRUE(Stretcher().Stretch(source.View(), image));
    EXPECT_EQ(image.pixels[0], 0xFF404040);
}

TEST(Stretch, HasNothingToDoForEmptySizes) {
    Picture source(4, 4);
    ScreenImage image;
    ASSERT_TRUE(image.Resize(-3, 7));
    EXPECT_TRUE(image.pixels.empty());
    EXPECT_TRUE(Stretcher().Stretch(source.View(), image));
    ASSERT_TRUE(image.Resize(2, 2));
    EXPECT_FALSE(Stretcher().Stretch({}, image));
    EXPECT_FALSE(Stretcher().Stretch({source.bytes.data(), 4, 0, source.stride}, image));
}

}  // namespace
}  // namespace marvolen
