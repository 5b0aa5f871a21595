// What a pane looks like, pixel for pixel.

#include "res/resources.h"
#include "tests/display/pane_fixture.h"

#include <QPainter>

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
    EXPECT_TRUE(timePlace.adjusted(0, 0, -1, 0).contains(Drawn())) << "or else it is cut";
    EXPECT_GT(Drawn().width(), 100);
    pane->resize(150, 100);  // ends in the middle of the time
    EXPECT_TRUE(timePlace.intersected({2, 2, 146, 21}).contains(Drawn()));
    pane->resize(kSize);
    ASSERT_TRUE(Show(Qt::green));  // without a stamp
    pane->SetStatus(0, 0);
    EXPECT_TRUE(Drawn().isEmpty());
}

// Counts the repaints that are for the time and nothing else of the strip.
class TimeRepaints : public QObject {
public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        const QRegion region = static_cast<QPaintEvent*>(event)->region();
        if (region.contains(QPoint(110, 10)) && !region.contains(QPoint(10, 10))) ++count;
        return false;
    }
};

TEST_F(PanePictureTest, TimeIsDrawnAgainWhenItIsAnotherOrHadGone) {
    TimeRepaints repaints;
    SYSTEMTIME time = kQuarterPast;
    pane->installEventFilter(&repaints);
    const auto show = [&](const QColor& colour, const SYSTEMTIME* stamp) {
        EXPECT_TRUE(Show(colour, stamp));
        QCoreApplication::processEvents();
        return repaints.count;
    };
    EXPECT_EQ(show(Qt::red, &time), 1);
    time.milliseconds = 40;
    EXPECT_EQ(show(Qt::green, &time), 1);
    time.second = 1;
    EXPECT_EQ(show(Qt::red, &time), 2);
    EXPECT_EQ(show(Qt::green, nullptr), 2);
    pane->SetStatus(0, 0);
    QCoreApplication::processEvents();
    time.milliseconds = 80;
    EXPECT_EQ(show(Qt::red, &time), 3);
}

// A chequered picture: one that is scaled, or moved by part of a pixel, would show gray.
TEST_F(PanePictureTest, ImageReachesTheScreenPixelForPixelAtEveryScale) {
    const PixelRect video = ToDevicePixels(VideoArea(360, 100), 0, 0, pane->devicePixelRatioF());
    QImage chequers(video.Width(), video.Height(), QImage::Format_Mono);
    for (int y = 0; y < chequers.height(); ++y) {
        std::fill_n(chequers.scanLine(y), chequers.bytesPerLine(), y % 2 == 0 ? 0x55 : 0xAA);
    }
    Deliver(ToJpeg(chequers.convertToFormat(QImage::Format_Grayscale8)));
    EXPECT_TRUE(WaitUntil([&] {
        const QImage screen = pane->grab().toImage();
        const QImage shown = screen.copy(video.left, video.top, video.Width(), video.Height());
        return shown.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither) == chequers;
    }));
}

}  // namespace
}  // namespace marvolen
