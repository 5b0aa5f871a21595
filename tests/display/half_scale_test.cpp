// Pictures that the live pane decodes at half scale, against the whole ones.

#include "tests/display/pane_fixture.h"

#include <QImageWriter>

#include <random>

namespace marvolen {
namespace {

using namespace test;

struct Kind {
    const char* name;
    int quality;
    bool gray;
    bool progressive;
};
constexpr Kind kKinds[] = {{"quality 75", 75, false, false},
                           {"quality 40", 40, false, false},
                           {"gray", 75, true, false},
                           {"progressive", 90, false, true}};

// A still of the camera server's, brought to a size.
Bytes Photograph(const char* still, QSize size, const Kind& kind) {
    const QString path = QStringLiteral(CAMERA_STILLS "/%1.jpg").arg(QLatin1String(still));
    QImage image = QImage(path).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.convertTo(kind.gray ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    QBuffer buffer;
    QImageWriter writer(&buffer, "JPEG");
    writer.setQuality(kind.quality);
    writer.setProgressiveScanWrite(kind.progressive);
    writer.write(image);
    return Bytes(buffer.data().begin(), buffer.data().end());
}

ScreenImage Stretched(const DibImage& picture, QSize size) {
    ScreenImage image;
    image.Resize(size.width(), size.height());
    Stretcher().Stretch({picture.GetPixels(), picture.Width(), picture.Height(), picture.Stride()},
                        image);
    return image;
}

// The mean difference of a channel.
double Difference(const ScreenImage& a, const ScreenImage& b) {
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        for (int shift = 0; shift < 24; shift += 8) {
            sum += std::abs(static_cast<int>(a.pixels[i] >> shift & 0xFF) -
                            static_cast<int>(b.pixels[i] >> shift & 0xFF));
        }
    }
    return static_cast<double>(sum) / (3.0 * static_cast<double>(a.pixels.size()));
}

TEST(HalfScale, LooksLikeTheWholePictureAndServesWhereThatIsTwiceAsLarge) {
    struct Case {
        QSize picture, pane;
        bool half;
    };
    const Case cases[] = {
        {{704, 480}, {348, 228}, true},  {{704, 480}, {352, 240}, true},
        {{704, 480}, {353, 240}, false}, {{704, 480}, {352, 241}, false},
        {{704, 480}, {346, 236}, true},  {{704, 480}, {235, 160}, true},
        {{711, 484}, {352, 240}, false}, {{352, 240}, {117, 76}, true},
        {{1280, 720}, {348, 228}, true}, {{1280, 720}, {639, 359}, true},
    };
    for (const Kind& kind : kKinds) {
        for (const auto& [size, pane, half] : cases) {
            const Bytes jpeg = Photograph("car_park", size, kind);
            DibImage whole, shown;
            ASSERT_EQ(whole.DecodeJpeg(jpeg.data(), jpeg.size()), 1);
            ASSERT_TRUE(DecodeJpegFrame(shown, jpeg, {true, pane.width(), pane.height()}));
            EXPECT_EQ(QSize(shown.Width(), shown.Height()), half ? size / 2 : size);
            const double mean = Difference(Stretched(whole, pane), Stretched(shown, pane));
            // At exactly half the size nothing but rounding and clamping is left, in chroma, too.
            EXPECT_LE(mean, !half              ? 0.0
                            : pane == size / 2 ? 0.7
                                               : 2.0)
                << kind.name << ' ' << size.width() << " to " << pane.width();
        }
    }
}

TEST(HalfScale, TakesAndRefusesTheSamePicturesWithTheSameErrors) {
    std::mt19937 random(5);
    for (const Kind& kind : kKinds) {
        const Bytes good = Photograph("gate", {96, 80}, kind);
        DibImage whole, half;
        for (int k = 0; k < 300; ++k) {
            Bytes jpeg = good;
            if (k % 3 == 0) jpeg.resize(random() % good.size());
            const std::size_t reach =
                k % 2 == 0 ? jpeg.size() : std::min<std::size_t>(jpeg.size(), 400);
            for (int damage = 0; damage < 2 && reach > 0; ++damage) {
                jpeg[random() % reach] = static_cast<std::uint8_t>(random());
            }
            const int taken = whole.DecodeJpeg(jpeg.data(), jpeg.size());
            ASSERT_EQ(half.DecodeJpegFor(1, 1, jpeg.data(), jpeg.size()), taken) << kind.name;
            ASSERT_EQ(half.LastError(), whole.LastError()) << kind.name << " #" << k;
        }
    }
}

}  // namespace
}  // namespace marvolen
