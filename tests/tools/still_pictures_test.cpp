#include "tools/camera_server/still_pictures.h"

#include "tests/support/event_loop.h"
#include "tools/camera_server/still_loop.h"

namespace marvolen {
namespace {

QImage Painted(const View& view, std::size_t position) {
    constexpr std::size_t kLeast[]{35000, 13000, 4000};
    const auto jpeg = StillLoop(view, 60, "Gate").Paint(position)->jpeg;
    const std::size_t least = kLeast[static_cast<std::size_t>(view.size)];
    EXPECT_TRUE(jpeg.size() > least && jpeg.size() < 2 * least) << view.channel << jpeg.size();
    return QImage::fromData({jpeg.data(), static_cast<qsizetype>(jpeg.size())});
}

// The mean difference of two pictures' brightness, of 255.
double Difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int i = 0; i < 176 * 120; ++i) {
        sum += std::abs(qGray(a.pixel(i % 176, i / 176)) - qGray(b.pixel(i % 176, i / 176)));
    }
    return sum / (176 * 120);
}

TEST(StillLoopTest, EveryViewIsAPlaceOfItsOwnOnAClosedPathInACamerasBytes) {
    std::vector<QImage> seen;
    for (int k = 0; k < 18; ++k) {
        const View view{k % 16, k / 16, PictureSize::Qsif};
        const QImage first = Painted(view, 0);
        const double step = Difference(first, Painted(view, 1));
        EXPECT_LT(Difference(first, Painted(view, 59)), 1.25 * step) << k;
        EXPECT_GT(Difference(first, Painted(view, 30)), 1.5 * step) << k;
        for (const QImage& other : seen) EXPECT_GT(Difference(first, other), 8) << k;
        seen.push_back(first);
        EXPECT_EQ(Painted({k % 16, k / 16, PictureSize::Sif}, 7).size(), QSize(352, 240));
        EXPECT_EQ(Painted({k % 16, k / 16, PictureSize::Full}, 7).size(), QSize(704, 480));
    }
}

TEST(StillPicturesTest, AskingNeverWaitsAndALoopGoesRound) {
    const View view{3, 2, PictureSize::Qsif};
    StillPictures pictures(2, {"", "", "", "Hall"});
    EXPECT_EQ(pictures.At(view, 0), nullptr);
    const PicturePtr second = StillLoop(view, 2, "Hall 3").Paint(1);
    ASSERT_TRUE(test::WaitUntil([&] {
        const PicturePtr shown = pictures.At(view, 3);
        return shown && shown->hash == second->hash;
    }));
    // The end doesn't wait for these.
    for (int k = 0; k < 16; ++k) EXPECT_EQ(pictures.At({k, 0, PictureSize::Full}, 0), nullptr);
}

}  // namespace
}  // namespace marvolen
