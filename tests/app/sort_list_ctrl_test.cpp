#include "app/sort_list_ctrl.h"

#include "app/sort_arrow.h"
#include "platform/cell_delegate.h"

#include <QImage>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using Strings = std::vector<std::string>;

class SortList : public ::testing::Test {
protected:
    SortList() {
        EXPECT_TRUE(list.SetColumns("ID,20;A name too long,80;Date,90"));
        list.AddRow("02", "Yard", "02/01/2004");
        list.AddRow("10", "Gate", "01/02/2004");
        list.AddRow("9", "Gate", "31/12/2003");
        list.AddRow("01", "Door", "05/01/2004");
        list.resize(260, 200);
        list.show();
    }

    Strings Column(int column) const {
        Strings texts;
        for (int row = 0; row < list.GetItemCount(); ++row) {
            texts.emplace_back(list.GetRowData(row)->TextOf(column));
        }
        return texts;
    }
    QRect HeaderItem(int column) const {
        const CSortHeaderCtrl& header = list.SortHeader();
        return {header.sectionViewportPosition(column), 0, header.sectionSize(column),
                header.height()};
    }
    // The right ends of two items side by side: what is lighter and darker than their face.
    static std::string RightEnds(const QImage& a, const QImage& b, const QColor& face) {
        std::string picture;
        for (int k = 0; k < 12 * 32; ++k) {
            const QImage& item = k % 32 < 16 ? a : b;
            const QRgb pixel = item.pixel(item.width() - 16 + k % 16, 3 + k / 32);
            const int shade = qGray(pixel) - qGray(face.rgb());
            const bool light = shade > 0 && face == QColor(192, 192, 192);
            if (k % 32 == 0) picture += '\n';
            picture += std::abs(shade) < 50 ? '.' : (light ? '+' : 'x');
        }
        return picture;
    }
    QImage HeaderImage(int column) const {
        return list.SortHeader().viewport()->grab(HeaderItem(column)).toImage();
    }
    void ClickColumn(int column) {
        QTest::mouseClick(list.SortHeader().viewport(), Qt::LeftButton, {},
                          HeaderItem(column).center());
    }

    CSortListCtrl list;
};

TEST_F(SortList, RowsTakeExactlyTheirColumns) {
    EXPECT_EQ(list.AddRow("1", "2"), -1);
    EXPECT_EQ(list.AddRow("1", "2", "3", "4"), -1);
    EXPECT_EQ(list.AddRow("1", "Tür", std::string_view("a\0b", 3)), 4);
    EXPECT_EQ(list.GetRowData(4)->texts, (Strings{"1", "Tür", "a"}));
    EXPECT_EQ(list.GetRowData(4)->Text(1), QStringLiteral("T\u00fcr"));
    EXPECT_EQ(list.GetRowData(5), nullptr);
    EXPECT_FALSE(list.SetColumns("A,99999999;B,10"));
    EXPECT_EQ(list.ColumnCount(), 3);
}

TEST_F(SortList, ClicksAndKeysSortUpThenDown) {
    ClickColumn(0);
    EXPECT_EQ(Column(0), (Strings{"01", "02", "9", "10"}));
    ClickColumn(0);
    EXPECT_EQ(Column(0), (Strings{"10", "9", "02", "01"}));
    EXPECT_EQ(list.AddRow("99", "New", ""), 4);
    EXPECT_EQ(Column(0).back(), "99") << "at the end until the next sorting";
    list.SortByColumn(0, false);
    EXPECT_EQ(Column(0), (Strings{"99", "10", "9", "02", "01"}));
    ClickColumn(1);
    EXPECT_EQ(Column(0), (Strings{"01", "10", "9", "99", "02"})) << "equal ones as they stood";
    QTest::keyClick(&list, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(Column(0), (Strings{"99", "9", "02", "01", "10"})) << "by date";
    QTest::keyClick(&list, Qt::Key_3, Qt::ControlModifier | Qt::KeypadModifier);
    QTest::keyClick(&list, Qt::Key_4, Qt::ControlModifier);  // no such column
    list.SortByColumn(3, true);
    QTest::keyClick(&list, Qt::Key_1);
    EXPECT_EQ(list.SortColumn(), 2);
    EXPECT_FALSE(list.SortAscending());
    EXPECT_EQ(list.SortHeader().SortColumn(), 2);
}

TEST_F(SortList, ColumnsFitTheirSamplesAndNamesAtEveryFontSize) {
    list.SetColumnSamples({"00", "Yard", "0000/00/00 00:00:00"});
    EXPECT_EQ(list.columnWidth(0), 20) << "wide enough already";
    for (int size = 8; size <= 16; ++size) {
        QFont font = list.font();
        font.setPointSize(size);
        list.setFont(font);
        const auto room = [&](const char* text) {
            return CellDelegate::WidthOf(list.fontMetrics(), QLatin1String(text));
        };
        EXPECT_GE(list.columnWidth(0), room("00"));
        EXPECT_GE(list.columnWidth(1), room("A name too long"));
        EXPECT_GE(list.columnWidth(2), room("0000/00/00 00:00:00"));
    }
}

TEST_F(SortList, ItsFocusIsSeenWithoutARowInSight) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    for (int rows = 0; rows < 200; ++rows) list.AddRow("1", "2", "3");
    list.setCurrentIndex(list.model()->index(0, 0));
    list.scrollToBottom();
    for (int round = 0; round < 2; ++round) {  // scrolled away, then empty
        list.setFocus();
        const QImage focused = list.viewport()->grab().toImage();
        list.clearFocus();
        EXPECT_NE(list.viewport()->grab().toImage(), focused);
        list.DeleteAllRows();
    }
}

// It points up for ascending, stands 4 pixels from the item's edges, and is seen on every palette:
// in its own two colours where the palette has shades.
TEST_F(SortList, TheArrowMarksTheSortedColumnOnly) {
    const std::string arrows = R"(
................................
.......x+..........xxxxxxxx+....
.......x.+.........x.......+....
......x..+..........x.....+.....
......x...+.........x.....+.....
.....x....+.........x....+......
.....x.....+.........x...+......
....x......+.........x..+.......
....x.......+........x..+.......
...x+++++++++.........x+........
......................x.........
................................)";
    list.SortHeader().setFixedHeight(17);
    ClickColumn(2);
    for (const int shade : {192, 255, 53, 0}) {
        const QColor face(shade, shade, shade);
        QPalette palette(face);
        palette.setColor(QPalette::ButtonText, shade < 128 ? Qt::white : Qt::black);
        list.SortHeader().setPalette(palette);
        std::string expected = arrows;
        if (shade != 192) std::ranges::replace(expected, '+', 'x');
        list.SortByColumn(1, true);
        const QImage up = HeaderImage(1);
        list.SortByColumn(1, false);
        EXPECT_EQ(RightEnds(up, HeaderImage(1), face), expected);
        const QImage other = HeaderImage(2);
        EXPECT_EQ(RightEnds(other, other, face).find_first_of("+x"), std::string::npos);
    }
    EXPECT_EQ(list.SortHeader().GetItemFormat(2), HDF_OWNERDRAW);
    EXPECT_EQ(list.SortHeader().GetItemFormat(0), HDF_LEFT);
}

}  // namespace
}  // namespace marvolen
