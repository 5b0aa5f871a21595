#pragma once

// Paints what stands around a pane's picture: title strip and frame. Interface thread only.

#include "display/status_marks.h"

#include <QFont>
#include <QPainter>
#include <QRegion>
#include <QSize>
#include <QString>

#include <cstdint>
#include <string>

namespace marvolen {

// The font of the texts in the strip: the desktop's family, in the largest size at which a time
// fits its place, whatever the desktop's font size.
QFont StripFont(const QFont& desktopFont);

// What strip and frame show. Borrowed.
struct TitleStrip {
    const QString& name;
    const std::string* timeText;  // null shows no time
    std::uint32_t status;         // PANE_...
};

// Paints the strip and the frame of a pane of this size.
void PaintTitleStrip(QPainter& painter, QSize pane, const QFont& font, const TitleStrip& strip,
                     StatusMarks& marks);

// The part of a pane of this size that PaintTitleStrip fills.
QRegion TitleStripRegion(QSize pane);

}  // namespace marvolen
