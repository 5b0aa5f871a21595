#include "tools/camera_server/scenes/overlay.h"

#include <QFontMetricsF>

#include <algorithm>
#include <mutex>

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

}  // namespace

Overlay::Overlay(int channel, const std::string& name, int pictureWidth, int pictureHeight)
    : width(pictureWidth), height(pictureHeight) {
    // Fonts are set up behind the scenes by the first who needs them.
    static std::mutex fonts;
    const std::lock_guard hold(fonts);
    const QFont large = TextFont(height * 0.105);
    const QFont small = TextFont(height * 0.058);
    const double rim = std::max(height * 0.0115, 1.6);
    capHeight = QFontMetricsF(large).capHeight();
    channelText = {QStringLiteral("%1").arg(channel, 2, 10, QLatin1Char('0')), large, rim};
    nameText = {QString::fromStdString(name), small, rim};
    colon = {QStringLiteral(":"), small, rim};
    for (std::size_t digit = 0; digit < 10; ++digit) {
        largeDigits[digit] = {QString::number(digit), large, rim};
        smallDigits[digit] = {QString::number(digit), small, rim};
    }
}

void Overlay::Draw(Pixels& pixels, int clock, int counter) const {
    const double margin = height * 0.028;
    channelText.Draw(pixels, width, margin, margin + capHeight);
    nameText.Draw(pixels, width, margin + channelText.Advance() + height * 0.022,
                  margin + capHeight);

    double x = margin;
    const int fields[] = {clock / 3600 % 24, clock / 60 % 60, clock % 60};
    for (int i = 0; i < 3; ++i) {
        if (i > 0) {
            colon.Draw(pixels, width, x, height - margin);
            x += colon.Advance();
        }
        for (const int digit : {fields[i] / 10, fields[i] % 10}) {
            const TextMask& mask = smallDigits[static_cast<std::size_t>(digit)];
            mask.Draw(pixels, width, x, height - margin);
            x += mask.Advance();
        }
    }
    // Digits as wide as each other, so that a running number doesn't jitter.
    x = width - margin - 3 * largeDigits[0].Advance();
    for (const int digit : {counter / 100 % 10, counter / 10 % 10, counter % 10}) {
        largeDigits[static_cast<std::size_t>(digit)].Draw(pixels, width, x, height - margin);
        x += largeDigits[0].Advance();
    }
}

}  // namespace marvolen::scenes
