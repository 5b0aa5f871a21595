// The picture holder over several frames.

#include "jpeg/dib_image.h"

#include "tests/jpeg/corpus.h"

#include <gtest/gtest.h>
#include <utility>

namespace marvolen::test {
namespace {

int DecodeInto(DibImage& image, const std::string& name) {
    const Bytes jpeg = ReadCorpusFile(name);
    return image.DecodeJpeg(jpeg.data(), jpeg.size());
}

Bytes PixelsOf(const DibImage& image) {
    return {image.GetPixels(), image.GetPixels() + image.GetHeader().biSizeImage};
}

TEST(DibImageTest, KeepsWhatNoNewRowReplaces) {
    DibImage image, fresh;
    ASSERT_EQ(DecodeInto(image, "other_64x64"), 1);
    const Bytes old = PixelsOf(image);
    EXPECT_EQ(DecodeInto(image, "no_dc_table"), 0);
    EXPECT_EQ(PixelsOf(image), old);
    const std::uint8_t* const buffer = image.GetPixels();
    ASSERT_EQ(DecodeInto(image, "damaged_restart"), 1);
    EXPECT_EQ(image.GetPixels(), buffer) << "reused for a picture of the same size";
    ASSERT_EQ(DecodeInto(fresh, "damaged_restart"), 1);
    const Bytes now = PixelsOf(image), rows = PixelsOf(fresh);
    const auto half = static_cast<std::ptrdiff_t>(now.size() / 2);
    EXPECT_TRUE(std::equal(now.begin(), now.begin() + half, old.begin()));
    EXPECT_TRUE(std::equal(now.begin() + half, now.end(), rows.begin() + half));
    DibImage moved = std::move(image);
    ASSERT_EQ(DecodeInto(moved, "flat"), 1);
    EXPECT_EQ(moved.Width() * 100 + moved.Height(), 808) << "another size replaces the buffer";
    EXPECT_EQ(moved.LastError(), 0);
    moved.Reset();
    EXPECT_EQ(moved.GetHeader(), BITMAPINFOHEADER{});
    EXPECT_EQ(moved.GetPixels(), nullptr);
}

}  // namespace
}  // namespace marvolen::test
