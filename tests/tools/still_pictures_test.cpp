#include "tools/camera_server/still_pictures.h"

#include "tests/support/event_loop.h"
#include "tools/camera_server/still_loop.h"

#include <QImage>

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace marvolen {
namespace {

// The picture, which must have the size in pixels and lie between the sizes in bytes.
QImage Painted(const View& view, std::size_t position, std::size_t least, std::size_t most) {
    const auto jpeg = StillLoop(view, 60, "Gate").Paint(position)->jpeg;
    EXPECT_TRUE(jpeg.size() > least && jpeg.size() < most) << view.channel << ": " << jpeg.size();
    const QImage image = QImage::fromData({jpeg.data(), static_cast<qsizetype>(jpeg.size())});
    const PictureExtent extent = ExtentOf(view.size);
    EXPECT_EQ(image.size(), QSize(extent.width, extent.height));
    return image;
}

// The mean difference of two pictures' brightness, of 255.
double Difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int i = 0; i < a.width() * a.height(); ++i) {
        const QPoint at(i % a.width(), i / a.width());
        sum += std::abs(qGray(a.pixel(at)) - qGray(b.pixel(at)));
    }
    return sum / (a.width() * a.height());
}

TEST(StillLoopTest, EveryViewIsAPlaceOfItsOwnOnAClosedPathInACamerasBytes) {
    std::vector<View> views{{2, 1, PictureSize::Qsif}, {2, 3, PictureSize::Qsif}};
    for (int channel = 0; channel < 16; ++channel) views.push_back({channel, 0, PictureSize::Qsif});
    std::vector<QImage> seen;
    for (const View& view : views) {
        const QImage first = Painted(view, 0, 4000, 9000);
        const double step = Difference(first, Painted(view, 1, 4000, 9000));
        EXPECT_LT(Difference(first, Painted(view, 59, 4000, 9000)), 1.25 * step) << view.channel;
        EXPECT_GT(Difference(first, Painted(view, 30, 4000, 9000)), 1.5 * step) << view.channel;
        for (const QImage& other : seen) EXPECT_GT(Difference(first, other), 8) << view.channel;
        seen.push_back(first);
        Painted({view.channel, view.camera, PictureSize::Sif}, 7, 13000, 25000);
        Painted({view.channel, view.camera, PictureSize::Full}, 7, 35000, 70000);
    }
}

TEST(StillPicturesTest, AskingNeverWaitsAndALoopGoesRound) {
    const View view{3, 2, PictureSize::Qsif};
    StillPictures pictures(2, {"", "", "", "Hall"});
    EXPECT_EQ(pictures.At(view, 0), nullptr);
    ASSERT_TRUE(test::WaitUntil([&] {
        const PicturePtr first = pictures.At(view, 0);
        return first && pictures.At(view, 1) != first;
    }));
    EXPECT_EQ(pictures.At(view, 1)->jpeg, StillLoop(view, 2, "Hall 3").Paint(1)->jpeg);
    EXPECT_EQ(pictures.At(view, 4), pictures.At(view, 0));
    // The end doesn't wait for these.
    for (int channel = 0; channel < 16; ++channel) {
        EXPECT_EQ(pictures.At({channel, 0, PictureSize::Full}, 0), nullptr);
    }
}

}  // namespace
}  // namespace marvolen
