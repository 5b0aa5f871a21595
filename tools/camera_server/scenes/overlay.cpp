#include "tools/camera_server/scenes/overlay.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QString>

#include <algorithm>

namespace marvolen::scenes {
namespace {

QFont TextFont(double pixels) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(static_cast<int>(std::max(pixels, 8.0)));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

// Digits as wide as each other, so that a running number doesn't jitter.
void AddDigits(QPainterPath& path, const QFont& font, double right, double baseline,
               const QString& digits) {
    const double step = QFontMetricsF(font).horizontalAdvance(QLatin1Char('0'));
    double x = right - step * static_cast<double>(digits.size());
    for (const QChar digit : digits) {
        path.addText(x, baseline, font, QString(digit));
        x += step;
    }
}

QString Padded(int number, int width) {
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

}  // namespace

void DrawOverlay(QImage& image, const OverlayText& text) {
    const double height = image.height();
    const double width = image.width();
    const double margin = height * 0.028;
    const QFont large = TextFont(height * 0.105);
    const QFont small = TextFont(height * 0.058);
    const double largeCap = QFontMetricsF(large).capHeight();

    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const QString channel = Padded(text.channel, 2);
    path.addText(margin, margin + largeCap, large, channel);
    const double nameAt = margin + QFontMetricsF(large).horizontalAdvance(channel) + height * 0.022;
    path.addText(nameAt, margin + largeCap, small, QString::fromStdString(text.name));
    const int clock = text.clock % 86400;
    path.addText(margin, height - margin, small,
                 Padded(clock / 3600, 2) + QLatin1Char(':') + Padded(clock / 60 % 60, 2) +
                     QLatin1Char(':') + Padded(clock % 60, 2));
    AddDigits(path, large, width - margin, height - margin, Padded(text.counter, 3));

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPen rim(QColor(0, 0, 0, 170), std::max(height * 0.0115, 1.6), Qt::SolidLine,
                   Qt::RoundCap, Qt::RoundJoin);
    painter.strokePath(path, rim);
    painter.fillPath(path, QColor(250, 250, 246));
}

}  // namespace marvolen::scenes
