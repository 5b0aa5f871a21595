// What a pane looks like, pixel for pixel.

#include "display/title_strip.h"
#include "res/resources.h"
#include "tests/display/pane_fixture.h"

#include <QFontMetrics>

namespace marvolen {
namespace {

using namespace test;

class PanePictureTest : public PaneTest {
protected:
    // The smallest rectangle with everything in the strip that isn't black.
    QRect Drawn() {
        const QImage image = pane->grab().toImage();
        QRect drawn;
        for (int y = 0; y < kStripHeight; ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) != Qt::black) drawn |= QRect(x, y, 1, 1);
            }
        }
        return drawn;
    }
};

TEST_F(PanePictureTest, FrameAndMarksTellTheStatus) {
    for (std::uint32_t status = 0; status < 8; ++status) {
        pane->SetStatus(status, ~status);
        QImage expected(kSize, QImage::Format_RGB32);
        expected.fill((status & PANE_SELECTED) != 0 ? Qt::red : Qt::black);
        QPainter painter(&expected);
        painter.fillRect(QRect(QPoint(), kSize).adjusted(2, 2, -2, -2), Qt::black);
        const auto mark = [&](std::uint32_t flag, int image, QPoint place) {
            if ((status & flag) == 0) return;
            painter.drawPixmap(place, LoadStatusMark(image, kStatusMarkSize, 1.0));
        };
        mark(PANE_CONNECTED, 1, {318, 2});
        mark(PANE_RECORDING, 0, {286, 2});
        EXPECT_EQ(pane->grab().toImage().convertToFormat(QImage::Format_RGB32), expected) << status;
    }
}

TEST_F(PanePictureTest, NameAndTimeKeepToTheirPlaces) {
    const QRect namePlace(2, 2, 100, 16), timePlace(102, 2, 135, 16);
    ASSERT_TRUE(pane->Open(std::string(200, 'W'), 0));
    EXPECT_TRUE(namePlace.contains(Drawn()));
    EXPECT_GT(Drawn().width(), 95);
    ASSERT_TRUE(pane->Open("", 0));
    ASSERT_TRUE(Show(Qt::red, &kQuarterPast));
    EXPECT_TRUE(timePlace.contains(Drawn()));
    EXPECT_GT(Drawn().width(), 100);
    pane->resize(150, 100);  // ends in the middle of the time
    EXPECT_TRUE(timePlace.intersected({2, 2, 146, 21}).contains(Drawn()));
    pane->resize(kSize);
    ASSERT_TRUE(Show(Qt::green));  // without a stamp
    pane->SetStatus(0, 0);
    EXPECT_TRUE(Drawn().isEmpty());
}

// A chequered picture: one that is scaled, or moved by part of a pixel, would show gray.
TEST_F(PanePictureTest, ImageReachesTheScreenPixelForPixelAtEveryScale) {
    const qreal ratio = pane->devicePixelRatioF();
    const PixelRect video = ToDevicePixels(VideoArea(360, 100), 0, 0, ratio);
    QImage chequers(video.Width(), video.Height(), QImage::Format_Grayscale8);
    for (int y = 0; y < chequers.height(); ++y) {
        for (int x = 0; x < chequers.width(); ++x) {
            chequers.scanLine(y)[x] = (x + y) % 2 == 0 ? 255 : 0;
        }
    }
    Deliver(ToJpeg(chequers));
    EXPECT_TRUE(WaitUntil([&] {
        const QImage screen = pane->grab().toImage();
        int differences = 0;
        for (int y = 0; y < chequers.height(); ++y) {
            for (int x = 0; x < chequers.width(); ++x) {
                const int shown = qGray(screen.pixel(video.left + x, video.top + y));
                if (std::abs(shown - chequers.scanLine(y)[x]) > 40) ++differences;
            }
        }
        return differences == 0;
    }));
}

TEST(StripFont, FitsItsPlaceWhateverTheDesktopsSize) {
    for (const char* family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
        const QFont font = StripFont(QFont(QString::fromLatin1(family), 30));
        const QRect text = QFontMetrics(font).boundingRect(QStringLiteral("2004/02/29 08:15:00"));
        EXPECT_LE(text.height(), 16);
        EXPECT_LE(text.width(), 135);
        EXPECT_GE(font.pixelSize(), 10);
        EXPECT_EQ(font, StripFont(QFont(QString::fromLatin1(family), 6)));
    }
}

}  // namespace
}  // namespace marvolen
