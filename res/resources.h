#pragma once

// The program's pictures and texts, compiled in. Vector art is drawn at the resolution asked for.
// Interface thread only.

#include <QCursor>
#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <QSize>
#include <QString>

namespace marvolen {

// The string of an id, empty when there is none.
QString LoadString(int id);

// The picture of an image id (or, of the status marks, 0 recording and 1 connected) at a size in
// device-independent pixels, drawn for devicePixelRatio. A null pixmap when there is no such
// picture.
QPixmap LoadImage(int id, QSize size, qreal devicePixelRatio);
QPixmap LoadStatusMark(int mark, QSize size, qreal devicePixelRatio);

// The icon of an id in its own colours, sharp at every size and device pixel ratio.
QIcon LoadIcon(int id);

// The icon of an id, its shape filled with the palette's ButtonText: of the active group, and of
// the disabled one where the icon is disabled. Follows no change of the palette; load it anew then.
QIcon LoadTintedIcon(int id, const QPalette& palette);

// The mouse cursor of an id, 24 device-independent pixels wide and high, sharp at the screen's
// device pixel ratio. It points with the middle of the tab it shows. The standard arrow when there
// is no such cursor.
QCursor LoadCursor(int id);

// Size of a status mark, device-independent pixels.
inline constexpr QSize kStatusMarkSize(32, 21);

}  // namespace marvolen
