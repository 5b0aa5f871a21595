#pragma once

// The toolkit's form of a PixelRect, and back.

#include "display/pane_geometry.h"

#include <QRect>

namespace marvolen {

inline QRect ToQRect(const PixelRect& rect) {
    return QRect(rect.left, rect.top, rect.Width(), rect.Height());
}

inline PixelRect ToPixelRect(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

}  // namespace marvolen
