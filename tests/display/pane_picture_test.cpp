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
    // The smallest rectangle with everything in this part of the pane that isn't black.
    QRect Drawn(const QRect& part) {
        const QImage image = Picture();
        QRect drawn;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                if (image.pixel(x, y) != QColor(Qt::black).rgb()) drawn |= QRect(x, y, 1, 1);
            }
        }
        return drawn;
    }

    bool FrameIs(const QColor& colour) {
        const QImage image = Picture();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool frame =
                    x < 2 || y < 2 || x >= image.width() - 2 || y >= image.height() - 2;
                if (frame && image.pixelColor(x, y) != colour) return false;
            }
        }
        return true;
    }

    static constexpr QRect kStripInside{2, 2, kWidth - 4, kStripHeight - 2};
    static constexpr QRect kNamePlace{2, 2, 100, 16};
    static constexpr QRect kTimePlace{102, 2, 135, 16};
    static constexpr SYSTEMTIME kTime{2004, 2, 0, 29, 8, 15, 0, 0};
};

TEST_F(PanePictureTest, FrameIsRedWhileSelectedElseBlack) {
    EXPECT_TRUE(FrameIs(Qt::black));
    pane->SetStatus(PANE_SELECTED, 0);
    EXPECT_TRUE(FrameIs(Qt::red));
    EXPECT_EQ(Picture().pixelColor(150, 10), QColor(Qt::black));
    ASSERT_TRUE(Show(green, Qt::green));
    EXPECT_TRUE(FrameIs(Qt::red));
    pane->SetStatus(0, PANE_SELECTED);
    EXPECT_TRUE(FrameIs(Qt::black));
}

TEST_F(PanePictureTest, NameKeepsToItsPlace) {
    EXPECT_TRUE(kNamePlace.contains(Drawn(kStripInside)));
    EXPECT_GT(Drawn(kStripInside).height(), 5);
    ASSERT_TRUE(pane->Open(std::string(200, 'W'), 0));
    EXPECT_TRUE(kNamePlace.contains(Drawn(kStripInside)));
    EXPECT_GT(Drawn(kStripInside).width(), 95);
    ASSERT_TRUE(pane->Open("", 0));
    EXPECT_TRUE(Drawn(kStripInside).isEmpty());
    pane->resize(60, kHeight);
    ASSERT_TRUE(pane->Open(std::string(200, 'W'), 0));
    EXPECT_TRUE(FrameIs(Qt::black));
}

TEST_F(PanePictureTest, TimeKeepsToItsPlaceAndGoesWithAPictureWithoutStamp) {
    ASSERT_TRUE(pane->Open("", 0));
    Deliver(red, &kTime);
    EXPECT_TRUE(WaitUntil([this] { return VideoIs(Qt::red); }));
    EXPECT_TRUE(kTimePlace.contains(Drawn(kStripInside)));
    EXPECT_GT(Drawn(kStripInside).width(), 100);
    pane->resize(150, kHeight);  // ends in the middle of the time
    EXPECT_TRUE(FrameIs(Qt::black));
    pane->resize(kWidth, kHeight);

    EXPECT_TRUE(Show(green, Qt::green));
    pane->SetStatus(PANE_SELECTED, 0);
    EXPECT_TRUE(Drawn(kStripInside).isEmpty());
}

TEST_F(PanePictureTest, MarksStandAtTheirPlaces) {
    ASSERT_TRUE(pane->Open("", 0));
    const struct {
        std::uint32_t flag;
        int mark;
        QPoint place;
    } marks[] = {{PANE_CONNECTED, 1, {318, 2}}, {PANE_RECORDING, 0, {286, 2}}};
    for (const auto& [flag, mark, place] : marks) {
        pane->SetStatus(flag, 0);
        QImage expected(pane->size(), QImage::Format_RGB32);
        expected.fill(Qt::black);
        QPainter(&expected).drawPixmap(place, LoadStatusMark(mark, kStatusMarkSize, 1.0));
        if (pane->devicePixelRatioF() == 1.0) {
            EXPECT_EQ(Picture().copy(kStripInside), expected.copy(kStripInside));
        }
        EXPECT_TRUE(QRect(place, kStatusMarkSize).contains(Drawn(kStripInside)));
        EXPECT_FALSE(Drawn(kStripInside).isEmpty());
        pane->SetStatus(0, flag);
        EXPECT_TRUE(Drawn(kStripInside).isEmpty());
    }
    pane->SetStatus(PANE_CONNECTED | PANE_RECORDING, 0);
    pane->resize(200, kHeight);
    EXPECT_TRUE(Drawn(QRect(0, 0, 200, kStripHeight)).isEmpty());
}

// A chequered picture: one that is scaled, or moved by part of a pixel, would show gray.
TEST_F(PanePictureTest, ImageReachesTheScreenPixelForPixel) {
    const qreal ratio = pane->devicePixelRatioF();
    const PixelRect video = ToDevicePixels(VideoArea(kWidth, kHeight), 0, 0, ratio);
    QImage chequers(video.Width(), video.Height(), QImage::Format_RGB32);
    for (int y = 0; y < chequers.height(); ++y) {
        for (int x = 0; x < chequers.width(); ++x) {
            chequers.setPixelColor(x, y, (x + y) % 2 == 0 ? Qt::white : Qt::black);
        }
    }
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    chequers.save(&buffer, "JPEG", 100);
    const auto differences = [&] {
        const QImage screen = pane->grab().toImage();
        int count = 0;
        for (int y = 0; y < chequers.height(); ++y) {
            for (int x = 0; x < chequers.width(); ++x) {
                const int shown = qGray(screen.pixel(video.left + x, video.top + y));
                if (std::abs(shown - qGray(chequers.pixel(x, y))) > 40) ++count;
            }
        }
        return count;
    };
    EXPECT_TRUE(WaitUntil([&] {
        Deliver(Bytes(jpeg.begin(), jpeg.end()));
        return differences() == 0;
    })) << differences();
}

TEST(StripFont, FitsItsPlaceWhateverTheDesktopsSize) {
    const QFont small = StripFont(QFont(QStringLiteral("DejaVu Sans"), 6));
    for (const char* family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
        const QFont font = StripFont(QFont(QString::fromLatin1(family), 30));
        const QFontMetrics metrics(font);
        EXPECT_LE(metrics.height(), 16);
        EXPECT_LE(metrics.horizontalAdvance(QStringLiteral("2004/02/29 08:15:00")), 135);
        EXPECT_GE(font.pixelSize(), 10);
    }
    EXPECT_EQ(small, StripFont(QFont(QStringLiteral("DejaVu Sans"), 30)));
}

}  // namespace
}  // namespace marvolen
