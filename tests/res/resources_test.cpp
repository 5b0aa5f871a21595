#include "res/resources.h"

#include "res/resource_ids.h"

#include <QImage>

#include <gtest/gtest.h>

namespace marvolen {
namespace {

int ReddishPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.alpha() > 200 && colour.red() > 2 * colour.blue()) ++count;
        }
    }
    return count;
}

TEST(Cursors, ATabOverNoTabHasTheCrossAndOverAnotherTheArrow) {
    const QCursor cross = LoadCursor(149), arrow = LoadCursor(150);
    EXPECT_EQ(IDC_CLEAR_CURSOR, 149);
    EXPECT_EQ(IDC_DROP_CURSOR, 150);
    EXPECT_GT(ReddishPixels(cross.pixmap().toImage()), 20);
    EXPECT_EQ(ReddishPixels(arrow.pixmap().toImage()), 0);
    EXPECT_EQ(arrow.pixmap().deviceIndependentSize(), QSizeF(24, 24));
    EXPECT_EQ(LoadCursor(1).shape(), Qt::ArrowCursor);
}

}  // namespace
}  // namespace marvolen
