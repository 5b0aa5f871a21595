#include "tools/camera_server/still_loop.h"

#include <QBuffer>
#include <QByteArray>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

// Resources of a static library are registered by hand; the macro must stand outside namespaces.
static void RegisterStills() {
    Q_INIT_RESOURCE(stills);
}

namespace marvolen {
namespace {

// What a camera of this kind spends on a full, a sif and a qsif picture, bytes.
constexpr qsizetype kTargetBytes[]{50000, 19000, 7000};

QImage LoadStill(const View& view) {
    RegisterStills();
    const int place = (view.channel + 5 * view.camera) % 16 + 1;
    return QImage(QStringLiteral(":/stills/%1").arg(place)).convertToFormat(QImage::Format_RGB32);
}

QByteArray Encode(const QImage& picture, int quality) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return picture.save(&buffer, "JPEG", quality) ? bytes : QByteArray();
}

// Cameras hold a size rather than a quality: the best that stays below the size, about.
int QualityFor(const QImage& picture, qsizetype targetBytes) {
    int quality = 40;
    for (const int step : {32, 16, 8, 4}) {
        if (Encode(picture, quality + step).size() <= targetBytes) quality += step;
    }
    return quality;
}

QFont TextFont(double pixels) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(std::max(static_cast<int>(pixels), 8));
    return font;
}

// White with a dark rim, readable on anything.
void DrawText(QPainter& painter, QPointF start, const QFont& font, double rim,
              const QString& text) {
    QPainterPath path;
    path.addText(start, font, text);
    painter.strokePath(
        path, QPen(QColor(0, 0, 0, 170), 1.4 * rim, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, QColor(250, 250, 250));
}

}  // namespace

StillLoop::StillLoop(const View& loopView, std::size_t loopLength, const std::string& channelName)
    : view(loopView),
      length(loopLength),
      name(QString::fromStdString(channelName)),
      still(LoadStill(view)) {}

PicturePtr StillLoop::Paint(std::size_t position) {
    QImage picture = still.copy(WindowAt(position));
    if (view.size != PictureSize::Full) {
        const PictureExtent extent = ExtentOf(view.size);
        picture = picture.scaled(extent.width, extent.height, Qt::IgnoreAspectRatio,
                                 Qt::SmoothTransformation);
    }
    AddGrain(picture, position);
    AddText(picture, position);
    if (quality == 0)
        quality = QualityFor(picture, kTargetBytes[static_cast<std::size_t>(view.size)]);
    const QByteArray jpeg = Encode(picture, quality);
    return MakePicture({jpeg.begin(), jpeg.end()});
}

// Goes once round an ellipse that touches the still's edges. Channels start at different places.
QRect StillLoop::WindowAt(std::size_t position) const {
    const PictureExtent window = ExtentOf(PictureSize::Full);
    const double turn =
        static_cast<double>(position) / static_cast<double>(length) + view.channel * 0.3;
    const double angle = 2 * std::numbers::pi * (view.channel % 2 == 0 ? turn : -turn);
    const double x = (1 + std::cos(angle)) / 2 * (still.width() - window.width);
    const double y = (1 + std::sin(angle)) / 2 * (still.height() - window.height);
    return {qRound(x), qRound(y), window.width, window.height};
}

// A sensor's noise: the sum of two even distributions, the same for red, green and blue.
void StillLoop::AddGrain(QImage& picture, std::size_t position) const {
    std::minstd_rand random(static_cast<std::uint32_t>(position) * 64 +
                            static_cast<std::uint32_t>(view.channel * 4 + view.camera) + 1);
    for (int y = 0; y < picture.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (QRgb* pixel = line; pixel < line + picture.width(); ++pixel) {
            const auto dice = static_cast<int>(random() >> 8);
            const int grain = (dice & 7) + (dice >> 3 & 7) - 7;
            const auto grained = [grain](int value) { return std::clamp(value + grain, 0, 255); };
            *pixel = qRgb(grained(qRed(*pixel)), grained(qGreen(*pixel)), grained(qBlue(*pixel)));
        }
    }
}

// Number and name at the top; at the bottom the position, in digits that a small pane still shows.
void StillLoop::AddText(QImage& picture, std::size_t position) const {
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double height = picture.height();
    const double margin = height * 0.028;
    const double rim = std::max(height * 0.0115, 1.6);
    const QFont large = TextFont(height * 0.105);
    const QFontMetricsF metrics(large);
    const auto draw = [&](double x, double baseline, const QFont& font, const QString& text) {
        DrawText(painter, {x, baseline}, font, rim, text);
    };
    const QString number = QStringLiteral("%1").arg(view.channel + 1, 2, 10, QLatin1Char('0'));
    const QString counter = QStringLiteral("%1").arg(position % 1000, 3, 10, QLatin1Char('0'));
    const double top = margin + metrics.capHeight();
    draw(margin, top, large, number);
    draw(margin + metrics.horizontalAdvance(number) + height * 0.022, top, TextFont(height * 0.058),
         name);
    draw(picture.width() - margin - metrics.horizontalAdvance(counter), height - margin, large,
         counter);
}

}  // namespace marvolen
