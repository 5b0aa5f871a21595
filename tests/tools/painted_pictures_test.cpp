#include "tools/camera_server/scenes/painted_pictures.h"

#include <QImage>

#include <chrono>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace marvolen {
namespace {

using Loop = std::vector<PicturePtr>;

// The complete loops of some views, in their order.
std::vector<Loop> Paint(const std::vector<View>& views, std::size_t length) {
    PaintedPictures source({.loopLength = length, .threads = 2, .names = {"Gate"}});
    for (const View& view : views) source.At(view, 0);
    source.WaitUntilComplete();
    std::vector<Loop> loops;
    for (const View& view : views) {
        Loop loop;
        for (std::size_t i = 0; i < length; ++i) loop.push_back(source.At(view, i + length));
        EXPECT_EQ(source.At(view, 0), loop[0]) << "a loop goes round";
        loops.push_back(loop);
    }
    return loops;
}

QImage Decode(const Picture& picture) {
    return QImage::fromData(picture.jpeg.data(), static_cast<int>(picture.jpeg.size()), "jpeg");
}

// The mean difference of two pictures' brightness, of 255.
double Difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
        }
    }
    return sum / (a.width() * a.height());
}

TEST(PaintedPicturesTest, EveryChannelAndCameraShowsAnotherMovingScene) {
    std::vector<View> views;
    for (int channel = 0; channel < 16; ++channel) {
        views.push_back({channel, 0, PictureSize::Qsif});
    }
    for (int camera = 1; camera < 4; ++camera) views.push_back({2, camera, PictureSize::Qsif});
    const auto loops = Paint(views, 2);
    std::vector<QImage> pictures;
    for (const Loop& loop : loops) {
        pictures.push_back(Decode(*loop[0]));
        EXPECT_EQ(pictures.back().size(), QSize(176, 120));
        EXPECT_NE(loop[0]->hash, loop[1]->hash);
        EXPECT_GT(loop[0]->jpeg.size(), 3000U);
        EXPECT_LT(loop[0]->jpeg.size(), 12000U);
    }
    for (std::size_t a = 0; a < pictures.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) {
            EXPECT_GT(Difference(pictures[a], pictures[b]), 8) << a << " and " << b;
        }
    }
}

TEST(PaintedPicturesTest, LargePicturesAreAsLargeAsACamerasAndAlwaysTheSame) {
    const std::vector<View> views{{0, 0, PictureSize::Full}, {9, 0, PictureSize::Sif}};
    const auto once = Paint(views, 1);
    const auto again = Paint(views, 1);
    EXPECT_EQ(Decode(*once[0][0]).size(), QSize(704, 480));
    EXPECT_EQ(Decode(*once[1][0]).size(), QSize(352, 240));
    EXPECT_GT(once[0][0]->jpeg.size(), 35000U);
    EXPECT_LT(once[0][0]->jpeg.size(), 70000U);
    for (std::size_t i = 0; i < views.size(); ++i) {
        EXPECT_EQ(once[i][0]->jpeg, again[i][0]->jpeg) << i;
    }
}

TEST(PaintedPicturesTest, AskingNeverWaitsAndEndingEarlyIsFine) {
    PaintedPictures source({.loopLength = 300, .threads = 1});
    for (int channel = 0; channel < 16; ++channel) {
        EXPECT_EQ(source.At({channel, 0, PictureSize::Full}, 0), nullptr);
    }
}

}  // namespace
}  // namespace marvolen
