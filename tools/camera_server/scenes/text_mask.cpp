// Outlines are filled here rather than by a painter: a painter shares its work among threads of its
// own, which is more than a few letters are worth.

#include "tools/camera_server/scenes/text_mask.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace marvolen::scenes {
namespace {

constexpr int kSubRows = 5;  // scan lines a pixel row
constexpr double kFaceShade = 250;
constexpr double kRimOpacity = 0.68;

struct Crossing {
    double x;
    int winding;
};

// Where a horizontal line crosses the outlines, from left to right.
std::vector<Crossing> Crossings(const QList<QPolygonF>& outlines, double y) {
    std::vector<Crossing> crossings;
    for (const QPolygonF& outline : outlines) {
        for (qsizetype i = 0; i + 1 < outline.size(); ++i) {
            const QPointF& a = outline[i];
            const QPointF& b = outline[i + 1];
            if ((a.y() <= y) == (b.y() <= y)) continue;
            const double x = a.x() + (b.x() - a.x()) * (y - a.y()) / (b.y() - a.y());
            crossings.push_back({x, a.y() < b.y() ? 1 : -1});
        }
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    return crossings;
}

// Adds a stretch of one scan line to the pixels of its row, in shares of a pixel.
void AddStretch(float* row, int width, double from, double to) {
    from = std::clamp(from, 0.0, static_cast<double>(width));
    to = std::clamp(to, 0.0, static_cast<double>(width));
    for (int x = static_cast<int>(from); x < width && x < to; ++x) {
        const double covered = std::min(to, x + 1.0) - std::max(from, static_cast<double>(x));
        row[x] += static_cast<float>(covered / kSubRows);
    }
}

// How much of each pixel lies inside the path by the nonzero winding rule.
std::vector<std::uint8_t> Fill(const QPainterPath& path, int width, int height) {
    const QList<QPolygonF> outlines = path.toSubpathPolygons();
    std::vector<std::uint8_t> mask;
    for (int y = 0; y < height; ++y) {
        std::vector<float> row(static_cast<std::size_t>(width));
        for (int sub = 0; sub < kSubRows; ++sub) {
            int winding = 0;
            double from = 0;
            for (const Crossing& c : Crossings(outlines, y + (sub + 0.5) / kSubRows)) {
                if (winding == 0) from = c.x;
                winding += c.winding;
                if (winding == 0) AddStretch(row.data(), width, from, c.x);
            }
        }
        for (const float covered : row) {
            mask.push_back(static_cast<std::uint8_t>(std::min(covered, 1.0F) * 255 + 0.5F));
        }
    }
    return mask;
}

}  // namespace

TextMask::TextMask(const QString& text, const QFont& font, double rimWidth)
    : advance(QFontMetricsF(font).horizontalAdvance(text)) {
    QPainterPath letters;
    letters.addText(0, 0, font, text);
    QPainterPathStroker stroker;
    stroker.setWidth(rimWidth);
    stroker.setJoinStyle(Qt::RoundJoin);
    QPainterPath around = stroker.createStroke(letters);
    const QRect bounds = around.boundingRect().toAlignedRect();
    left = bounds.left();
    top = bounds.top();
    width = bounds.width();
    height = bounds.height();
    letters.translate(-left, -top);
    around.translate(-left, -top);
    face = Fill(letters, width, height);
    rim = Fill(around, width, height);
}

void TextMask::Draw(Pixels& pixels, int pictureWidth, double x, double baseline) const {
    const int atX = static_cast<int>(std::lround(x)) + left;
    const int atY = static_cast<int>(std::lround(baseline)) + top;
    const int pictureHeight = static_cast<int>(pixels.size()) / pictureWidth;
    for (int v = std::max(0, -atY); v < std::min(height, pictureHeight - atY); ++v) {
        for (int u = std::max(0, -atX); u < std::min(width, pictureWidth - atX); ++u) {
            const auto at = static_cast<std::size_t>(v * width + u);
            std::uint32_t& pixel =
                pixels[static_cast<std::size_t>((atY + v) * pictureWidth + atX + u)];
            const double dark = 1 - kRimOpacity * rim[at] / 255;
            const double white = face[at] / 255.0;
            std::uint32_t mixed = 0xFF000000U;
            for (const int shift : {16, 8, 0}) {
                const double under = (pixel >> shift & 0xFF) * dark;
                mixed |= static_cast<std::uint32_t>(under + (kFaceShade - under) * white) << shift;
            }
            pixel = mixed;
        }
    }
}

}  // namespace marvolen::scenes
