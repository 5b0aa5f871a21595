// Every set of kernels against the model: the same blocks and lines, fixed and random, every byte.

#include "jpeg/jpeg_kernels.h"
#include "tests/jpeg/reference_model.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace marvolen::test {
namespace {

class KernelsTest : public testing::TestWithParam<const JpegKernels*> {
protected:
    const JpegKernels& kernels = *GetParam();
    std::mt19937 random{20240229};

    std::int16_t Random(int limit) {
        return static_cast<std::int16_t>(
            std::uniform_int_distribution<int>(-limit - 1, limit)(random));
    }
    std::vector<std::uint8_t> RandomBytes(std::size_t count) {
        std::vector<std::uint8_t> bytes(count);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        return bytes;
    }

    // Blocks with a single coefficient, with few, with all, and far out of range.
    std::vector<Block> Blocks() {
        std::vector<Block> blocks;
        for (std::size_t i = 0; i < 64; ++i) {
            for (const int value : {1, -1, 37, -1024, 32767, -32768}) {
                blocks.emplace_back().fill(0);
                blocks.back()[i] = static_cast<std::int16_t>(value);
            }
        }
        for (const int limit : {1, 15, 255, 1023, 32767}) {
            for (int filled = 2; filled <= 64; filled += 2) {
                blocks.emplace_back().fill(0);
                for (int i = 0; i < filled; ++i) blocks.back()[random() % 64] = Random(limit);
            }
        }
        return blocks;
    }
};

// An 8 x 8 window in the middle of a wider buffer, whose surroundings must stay as they are.
class Window {
public:
    static constexpr std::ptrdiff_t kStride = 24;
    std::uint8_t* Start() { return bytes.data() + kStride + 8; }

    void Check(const SampleBlock& expected, const char* kernel) const {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const std::size_t row = i / 24 - 1;
            const std::size_t column = i % 24 - 8;
            const int want = row < 8 && column < 8 ? expected[row * 8 + column] : kUntouched;
            ASSERT_EQ(bytes[i], want) << kernel << " at byte " << i;
        }
    }

private:
    static constexpr int kUntouched = 0xA5;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(24 * 10, kUntouched);
};

TEST_P(KernelsTest, FastIdctIsTheModel) {
    std::array<int, 64> camera;
    for (std::size_t i = 0; i < 64; ++i) camera[i] = static_cast<int>(3 + i / 8 * 5 + i % 8 * 4);
    Block wild;
    for (auto& entry : wild) entry = Random(32767);
    for (const Block& table : {ModelFastTable(camera), wild}) {
        for (const Block& block : Blocks()) {
            Window window;
            kernels.fastIdct(block.data(), table.data(), window.Start(), Window::kStride);
            window.Check(ModelFastIdct(block, table), kernels.name);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(KernelsTest, FastIdctOfDcAlone) {
    std::array<int, 64> ones;
    ones.fill(1);
    const Block table = ModelFastTable(ones);
    for (int dc = -1200; dc <= 1200; ++dc) {
        const Block block = {static_cast<std::int16_t>(dc)};
        SampleBlock flat;
        flat.fill(static_cast<std::uint8_t>(std::clamp((dc >> 3) + 128, 0, 255)));
        Window window;
        kernels.fastIdct(block.data(), table.data(), window.Start(), Window::kStride);
        window.Check(flat, kernels.name);
        if (HasFatalFailure()) return;
    }
}

TEST_P(KernelsTest, PlainIdctIsTheModel) {
    for (const Block& block : Blocks()) {
        Window window;
        kernels.plainIdct(block.data(), window.Start(), Window::kStride);
        window.Check(ModelPlainIdct(block), kernels.name);
        if (HasFatalFailure()) return;
    }
}

TEST_P(KernelsTest, ColourOfEveryChromaPair) {
    constexpr int kPairs = 65536;
    std::vector<std::uint8_t> cb(kPairs), cr(kPairs), row(4 * kPairs);
    for (std::size_t i = 0; i < kPairs; ++i) {
        cb[i] = static_cast<std::uint8_t>(i);
        cr[i] = static_cast<std::uint8_t>(i >> 8);
    }
    for (const int y : {0, 1, 127, 128, 254, 255}) {
        const std::vector<std::uint8_t> luma(kPairs, static_cast<std::uint8_t>(y));
        const SampleLines lines = {luma.data(), nullptr, cb.data(), cr.data()};
        kernels.buildColour[1](lines, kPairs, row.data(), nullptr);
        for (std::size_t i = 0; i < kPairs; ++i) {
            const auto rgb = ModelColour(y, cb[i], cr[i]);
            ASSERT_TRUE(std::equal(rgb.begin(), rgb.end(), row.data() + 4 * i))
                << kernels.name << " y " << y << " cb " << +cb[i] << " cr " << +cr[i];
        }
    }
}

TEST_P(KernelsTest, ColourRowsOfEveryLayoutAndLength) {
    constexpr std::uint8_t kUntouched = 0xA5;
    for (std::size_t mode = 1; mode < kColourModes; ++mode) {
        const std::size_t across = mode == 2 || mode == 4 ? 2 : 1;
        const std::size_t rows = mode >= 3 ? 2 : 1;
        for (const std::size_t samples : {1U, 8U, 56U, 63U, 64U, 65U, 72U, 352U}) {
            SCOPED_TRACE(testing::Message() << kernels.name << " mode " << mode << ", " << samples);
            const auto y = RandomBytes(samples * across), below = RandomBytes(samples * across);
            const auto cb = RandomBytes(samples), cr = RandomBytes(samples);
            std::vector<std::uint8_t> out[2];
            for (auto& row : out) row.assign(4 * samples * across + 16, kUntouched);
            kernels.buildColour[mode]({y.data(), below.data(), cb.data(), cr.data()},
                                      static_cast<int>(samples), out[0].data(), out[1].data());
            for (std::size_t r = 0; r < 2; ++r) {
                std::vector<std::uint8_t> expected;
                for (std::size_t x = 0; r < rows && x < samples * across; ++x) {
                    const auto rgb =
                        ModelColour((r == 0 ? y : below)[x], cb[x / across], cr[x / across]);
                    expected.insert(expected.end(), {rgb[0], rgb[1], rgb[2], 0});
                }
                expected.resize(out[r].size(), kUntouched);
                ASSERT_EQ(out[r], expected) << "row " << r;
            }
        }
    }
}

TEST_P(KernelsTest, PackedPixels) {
    for (std::size_t pixels = 0; pixels < 70; ++pixels) {
        const auto row = RandomBytes(4 * pixels);
        std::vector<std::uint8_t> gray(3 * pixels + 8, 1), colour = gray;
        auto wantGray = gray, wantColour = gray;
        for (std::size_t i = 0; i < 3 * pixels; ++i) {
            wantGray[i] = row[i / 3];
            wantColour[i] = row[i / 3 * 4 + 2 - i % 3];
        }
        kernels.packGray(row.data(), static_cast<int>(pixels), gray.data());
        kernels.packColour(row.data(), static_cast<int>(pixels), colour.data());
        ASSERT_EQ(gray, wantGray) << kernels.name << ", " << pixels;
        ASSERT_EQ(colour, wantColour) << kernels.name << ", " << pixels;
    }
}

INSTANTIATE_TEST_SUITE_P(Kernels, KernelsTest,
                         testing::ValuesIn(AvailableJpegKernels().begin(),
                                           AvailableJpegKernels().end()),
                         [](const auto& kernels) { return std::string(kernels.param->name); });

TEST(KernelDispatchTest, CanBeForced) {
    EXPECT_STREQ(AvailableJpegKernels().front()->name, "portable");
    JpegKernels other = *AvailableJpegKernels().front();
    ForceJpegKernels(&other);
    EXPECT_EQ(&ActiveJpegKernels(), &other);
    ForceJpegKernels(nullptr);
    EXPECT_EQ(&ActiveJpegKernels(), AvailableJpegKernels().back());
}

}  // namespace
}  // namespace marvolen::test
