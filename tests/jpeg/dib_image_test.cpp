// The picture holder, and what damaged frames leave in it.

#include "jpeg/dib_image.h"

#include "tests/jpeg/decoding.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace marvolen::test {
namespace {

int DecodeInto(DibImage& image, const Bytes& jpeg) {
    return image.DecodeJpeg(jpeg.data(), jpeg.size());
}

TEST(DibImageTest, HeaderDescribesThePixels) {
    DibImage image;
    EXPECT_EQ(image.GetHeader(), BITMAPINFOHEADER{});
    EXPECT_EQ(image.GetPixels(), nullptr);
    image.InitHeader();
    EXPECT_EQ(image.GetHeader().biSize, 40U);
    EXPECT_EQ(image.GetHeader().biPlanes, 1);
    EXPECT_EQ(image.GetHeader().biCompression, BI_RGB);
    for (const auto& [width, stride] : {std::pair{1, 4U}, {2, 8U}, {3, 12U}, {4, 12U}, {17, 52U}}) {
        ASSERT_EQ(DecodeInto(image, EncodeJpeg(MakePhotograph(width, 5), {})), 1);
        EXPECT_EQ(image.Stride(), stride);
        EXPECT_EQ(image.GetHeader().biWidth, width);
        EXPECT_EQ(image.GetHeader().biHeight, 5);
        EXPECT_EQ(image.GetHeader().biBitCount, 24);
        EXPECT_EQ(image.GetHeader().biSizeImage, 5 * stride);
        for (std::size_t y = 0; y < 5; ++y) {
            for (auto x = static_cast<std::size_t>(width) * 3; x < stride; ++x) {
                EXPECT_EQ(image.GetPixels()[y * stride + x], 0) << "padding";
            }
        }
    }
    EXPECT_EQ(DecodeInto(image, {}), 0);
    EXPECT_EQ(image.LastError(), -217);
    image.Reset();
    EXPECT_EQ(image.GetHeader(), BITMAPINFOHEADER{});
    EXPECT_EQ(image.GetPixels(), nullptr);
    EXPECT_EQ(image.LastError(), 0);
}

TEST(DibImageTest, SameSizeReusesTheBuffer) {
    DibImage image;
    const Bytes first = EncodeJpeg(MakePhotograph(64, 48, 6, 1), {});
    const Bytes second = EncodeJpeg(MakePhotograph(64, 48, 6, 2), {});
    ASSERT_EQ(DecodeInto(image, first), 1);
    const std::uint8_t* pixels = image.GetPixels();
    ASSERT_EQ(DecodeInto(image, second), 1);
    EXPECT_EQ(image.GetPixels(), pixels);
    EXPECT_EQ(ToPicture(image).rgb, Decode(second).picture.rgb);
    ASSERT_EQ(DecodeInto(image, EncodeJpeg(MakePhotograph(48, 64), {})), 1);
    EXPECT_EQ(image.Width(), 48);
    EXPECT_EQ(image.Height(), 64);
}

TEST(DibImageTest, MovesWithoutCopying) {
    DibImage from;
    ASSERT_EQ(DecodeInto(from, EncodeJpeg(MakePhotograph(20, 10), {})), 1);
    const std::uint8_t* pixels = from.GetPixels();
    DibImage to = std::move(from);
    EXPECT_EQ(to.GetPixels(), pixels);
    EXPECT_EQ(to.Width(), 20);
    DibImage third;
    third = std::move(to);
    EXPECT_EQ(third.GetPixels(), pixels);
}

TEST(DibImageTest, FailedFrameLeavesThePictureAlone) {
    DibImage image;
    const Bytes good = EncodeJpeg(MakePhotograph(64, 48), {});
    ASSERT_EQ(DecodeInto(image, good), 1);
    const Picture before = ToPicture(image);
    EXPECT_EQ(DecodeInto(image, Bytes(600, 0x41)), 0);
    EXPECT_EQ(image.LastError(), -217);
    EXPECT_EQ(ToPicture(image).rgb, before.rgb);
    EXPECT_EQ(DecodeInto(image, good), 1);
    EXPECT_EQ(image.LastError(), 0);
}

TEST(DibImageTest, RowsBehindAnErrorKeepWhatTheyHeld) {
    const Bytes old = EncodeJpeg(MakePhotograph(64, 64, 6, 1), {});
    const Bytes fresh = EncodeJpeg(MakePhotograph(64, 64, 6, 2), {.restartInterval = 8});
    Bytes broken = fresh;
    // Four MCUs a row: the second of the restart markers, RST0, stands behind two rows. Make it
    // RST5.
    std::size_t position = 0;
    while (broken[position] != 0xFF || broken[position + 1] != 0xD0) ++position;
    broken[position + 1] = 0xD5;
    DibImage image;
    ASSERT_EQ(DecodeInto(image, old), 1);
    ASSERT_EQ(DecodeInto(image, broken), 1);
    EXPECT_EQ(image.LastError(), -228);
    const Picture picture = ToPicture(image);
    const Picture oldPicture = Decode(old).picture, freshPicture = Decode(fresh).picture;
    const auto half = static_cast<std::ptrdiff_t>(picture.rgb.size() / 2);
    EXPECT_TRUE(
        std::equal(picture.rgb.begin(), picture.rgb.begin() + half, freshPicture.rgb.begin()));
    EXPECT_TRUE(
        std::equal(picture.rgb.begin() + half, picture.rgb.end(), oldPicture.rgb.begin() + half));
}

TEST(DamageTest, FrameCutAnywhereStillEnds) {
    for (const bool progressive : {false, true}) {
        const Bytes jpeg =
            EncodeJpeg(MakePhotograph(120, 90),
                       {.restartInterval = progressive ? 0 : 6, .progressive = progressive});
        const Picture whole = Decode(jpeg).picture;
        std::size_t entropy = 0;  // where the first scan's data begins
        while (jpeg[entropy] != 0xFF || jpeg[entropy + 1] != 0xDA) ++entropy;
        entropy += 2 + jpeg[entropy + 3];
        for (std::size_t length = 0; length < jpeg.size(); length += length < entropy ? 1 : 37) {
            const Bytes cut(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(length));
            for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
                const Decoded decoded = Decode(cut, path);
                if (length >= entropy && !progressive) {
                    ASSERT_EQ(decoded.result, 1) << length;
                }
                const bool shown = decoded.result == 1;
                ASSERT_EQ(decoded.picture.rgb.size(), shown ? whole.rgb.size() : 0) << length;
                ASSERT_TRUE(shown || decoded.error < 0) << length;
            }
        }
    }
}

TEST(DamageTest, CutInTheEntropyDataKeepsTheRowsBefore) {
    const Bytes jpeg = EncodeJpeg(MakePhotograph(704, 480), {});
    const Bytes cut(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(jpeg.size() / 2));
    const Decoded decoded = Decode(cut);
    ASSERT_EQ(decoded.result, 1);
    const Picture whole = Decode(jpeg).picture;
    EXPECT_TRUE(std::equal(whole.rgb.begin(), whole.rgb.begin() + 704 * 3 * 160,
                           decoded.picture.rgb.begin()));
    EXPECT_FALSE(decoded.picture.rgb == whole.rgb);
}

TEST(DamageTest, FlippedBitsEndInAPictureOrAnError) {
    std::mt19937 random(7);
    for (const EncodeOptions& options : {EncodeOptions{.optimise = true, .restartInterval = 5},
                                         EncodeOptions{.horizontal = 1, .quantPercent = 300},
                                         EncodeOptions{.progressive = true}}) {
        const Bytes jpeg = EncodeJpeg(MakePhotograph(64, 50), options);
        for (int round = 0; round < 400; ++round) {
            Bytes flipped = jpeg;
            for (int flips = 0; flips <= round % 6; ++flips) {
                // Every other round damages the first 700 bytes only, which are mostly headers.
                const std::size_t range = round % 2 == 0 ? jpeg.size() : 700;
                flipped[random() % range] ^= static_cast<std::uint8_t>(1U << random() % 8);
            }
            for (const JpegPath path : {JpegPath::Fast, JpegPath::Plain}) {
                const Decoded decoded = Decode(flipped, path);
                ASSERT_TRUE(decoded.result == 1 || decoded.error < 0);
                ASSERT_GE(decoded.error, -233);
            }
        }
    }
}

}  // namespace
}  // namespace marvolen::test
