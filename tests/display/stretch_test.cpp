#include "display/stretch.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace marvolen {
namespace {

// A picture of random bytes, rows padded like a bitmap's.
struct Picture {
    Picture(int itsWidth, int itsHeight) : width(itsWidth), height(itsHeight) {
        static std::mt19937 random(1);
        bytes.resize(stride * static_cast<std::size_t>(height));
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    }
    std::uint8_t& At(int x, int y, int channel) {  // y from the top
        return bytes[static_cast<std::size_t>(height - 1 - y) * stride +
                     static_cast<std::size_t>(x * 3 + channel)];
    }
    BottomUpPicture View() const { return {bytes.data(), width, height, stride}; }

    int width;
    int height;
    std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    std::vector<std::uint8_t> bytes;
};

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

// The exact value of one channel of a target pixel.
double Exact(Picture& source, const ScreenImage& target, int x, int y, int channel) {
    double sum = 0;
    for (int row = 0; row < source.height; ++row) {
        const double down = Share(source.height, target.height, y, row);
        for (int column = 0; down > 0 && column < source.width; ++column) {
            const double across = Share(source.width, target.width, x, column);
            sum += down * across * source.At(column, row, channel);
        }
    }
    return sum;
}

TEST(Stretch, StaysCloseToTheExactResultAtEverySizeAndCopiesAtTheSame) {
    const int sizes[][4] = {{1, 1, 1, 1},     {1, 1, 9, 5},      {2, 2, 1, 1},     {5, 3, 5, 3},
                            {7, 9, 14, 18},   {17, 33, 16, 32},  {40, 30, 13, 70}, {40, 30, 77, 11},
                            {352, 2, 117, 2}, {3, 480, 3, 150},  {64, 1, 1, 64},   {1, 64, 64, 1},
                            {2000, 2, 50, 1}, {2, 1000, 1, 999}, {100, 50, 99, 51}};
    Stretcher stretcher;  // one for all, so that nothing of one size survives into another
    for (const auto& [width, height, toWidth, toHeight] : sizes) {
        Picture source(width, height);
        ScreenImage image;
        ASSERT_TRUE(image.Resize(toWidth, toHeight));
        ASSERT_TRUE(stretcher.Stretch(source.View(), image));
        const double allowed = width == toWidth && height == toHeight ? 0 : 2;
        for (int i = 0; i < toWidth * toHeight * 3; ++i) {
            const std::uint32_t pixel = image.pixels[static_cast<std::size_t>(i / 3)];
            const double exact = Exact(source, image, i / 3 % toWidth, i / 3 / toWidth, i % 3);
            ASSERT_NEAR(pixel >> (8 * (i % 3)) & 0xFF, exact, allowed)
                << width << 'x' << height << " to " << toWidth << 'x' << toHeight << " at " << i;
        }
    }
}

// Every pair of small sizes, and larger ones that end in the middle of what a kernel does at once.
TEST(Stretch, GivesTheSamePixelsWithEveryKernel) {
    std::mt19937 random(7);
    for (const StretchKernels* kernels : AvailableStretchKernels()) {
        SCOPED_TRACE(kernels->name);
        Stretcher reference(kPortableStretchKernels);
        Stretcher stretcher(*kernels);
        for (int k = 0; k < 3000; ++k) {
            const auto size = [&] { return 1 + static_cast<int>(random() % (k % 50 ? 24 : 400)); };
            Picture source(size(), size());
            for (std::uint8_t& byte : source.bytes) {
                if (k % 3 == 0) byte = byte < 128 ? 0 : 255;
            }
            ScreenImage expected, image;
            ASSERT_TRUE(expected.Resize(size(), size()));
            ASSERT_TRUE(image.Resize(expected.width, expected.height));
            ASSERT_TRUE(reference.Stretch(source.View(), expected));
            ASSERT_TRUE(stretcher.Stretch(source.View(), image));
            ASSERT_EQ(image.pixels, expected.pixels)
                << source.width << 'x' << source.height << " to " << image.width << 'x'
                << image.height;
        }
    }
}

// One pixel has the average of 8192 here, weighed in 1/256.
TEST(Stretch, ReducesTheLargestPictureToAPointAndAnEmptyOneToNothing) {
    Picture source(8192, 1);
    for (int k = 0; k < 8192 * 3; ++k) source.At(0, 0, k) = k < 2048 * 3 ? 255 : 0;
    ScreenImage image;
    ASSERT_TRUE(image.Resize(1, 1));
    ASSERT_TRUE(Stretcher().Stretch(source.View(), image));
    EXPECT_EQ(image.pixels[0], 0xFF404040);
    EXPECT_FALSE(Stretcher().Stretch({source.bytes.data(), 4, 0, source.stride}, image));
    ASSERT_TRUE(image.Resize(-3, 7));
    EXPECT_TRUE(Stretcher().Stretch(source.View(), image));
}

}  // namespace
}  // namespace marvolen
