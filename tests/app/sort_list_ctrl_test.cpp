#include "app/sort_list_ctrl.h"

#include "app/sort_arrow.h"

#include <QApplication>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using Strings = std::vector<std::string>;

Strings Column(const CSortListCtrl& list, int column) {
    Strings texts;
    for (int row = 0; row < list.GetItemCount(); ++row) {
        texts.emplace_back(list.GetRowData(row)->TextOf(column));
    }
    return texts;
}

void ClickColumn(const CSortListCtrl& list, int column) {
    const CSortHeaderCtrl& header = list.SortHeader();
    const QPoint middle(header.sectionViewportPosition(column) + header.sectionSize(column) / 2,
                        header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, middle);
}

class SortList : public ::testing::Test {
protected:
    SortList() {
        EXPECT_TRUE(list.SetColumns("ID,40;Name,80;Date,90"));
        list.resize(260, 200);
        list.show();
    }

    void AddSamples() {
        EXPECT_EQ(list.AddRow("02", "Yard", "02/01/2004"), 0);
        EXPECT_EQ(list.AddRow("10", "Gate", "01/02/2004"), 1);
        EXPECT_EQ(list.AddRow("9", "Gate", "31/12/2003"), 2);
        EXPECT_EQ(list.AddRow("01", "Door", "05/01/2004"), 3);
    }

    CSortListCtrl list;
};

TEST_F(SortList, RowsTakeExactlyTheirColumns) {
    EXPECT_EQ(list.AddRow("1", "2"), -1);
    EXPECT_EQ(list.AddRow("1", "2", "3", "4"), -1);
    EXPECT_EQ(list.GetItemCount(), 0);
    std::string name = "T\xC3\xBCr";
    EXPECT_EQ(list.AddRow("1", name, std::string_view("a\0b", 3)), 0);
    name = "gone";
    const CSortListCtrl::RowData& row = *list.GetRowData(0);
    EXPECT_EQ(row.texts, (Strings{"1", "T\xC3\xBCr", "a"}));
    EXPECT_EQ(row.userValue, 0U);
    EXPECT_EQ(row.Text(1), QStringLiteral("T\u00fcr"));
    EXPECT_EQ(list.GetRowData(1), nullptr);
}

TEST_F(SortList, ClicksSortUpThenDown) {
    AddSamples();
    ClickColumn(list, 0);
    EXPECT_EQ(Column(list, 0), (Strings{"01", "02", "9", "10"}));
    ClickColumn(list, 0);
    EXPECT_EQ(Column(list, 0), (Strings{"10", "9", "02", "01"}));
    EXPECT_FALSE(list.SortAscending());
    ClickColumn(list, 2);
    EXPECT_EQ(Column(list, 2), (Strings{"31/12/2003", "02/01/2004", "05/01/2004", "01/02/2004"}));
    EXPECT_EQ(list.SortColumn(), 2);
    EXPECT_TRUE(list.SortAscending());
    EXPECT_EQ(list.SortHeader().SortColumn(), 2);
    ClickColumn(list, 1);
    EXPECT_EQ(Column(list, 1), (Strings{"Door", "Gate", "Gate", "Yard"}));
    EXPECT_EQ(Column(list, 0), (Strings{"01", "9", "10", "02"}));  // as they stood before
    ClickColumn(list, 1);
    EXPECT_EQ(Column(list, 0), (Strings{"02", "9", "10", "01"}));
}

TEST_F(SortList, ControlAndADigitSortLikeAClick) {
    AddSamples();
    QTest::keyClick(&list, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(Column(list, 0), (Strings{"01", "02", "9", "10"}));
    QTest::keyClick(&list, Qt::Key_1, Qt::ControlModifier | Qt::KeypadModifier);
    EXPECT_EQ(Column(list, 0), (Strings{"10", "9", "02", "01"}));
    QTest::keyClick(&list, Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(list.SortColumn(), 2);
    EXPECT_TRUE(list.SortAscending());
    QTest::keyClick(&list, Qt::Key_4, Qt::ControlModifier);  // there is none
    QTest::keyClick(&list, Qt::Key_0, Qt::ControlModifier);
    QTest::keyClick(&list, Qt::Key_1);
    QTest::keyClick(&list, Qt::Key_1, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(list.SortColumn(), 2);
    EXPECT_TRUE(list.SortAscending());
    EXPECT_TRUE(list.SetColumns("4,9;5,9;6,9;7,9;8,9;9,9"));
    QTest::keyClick(&list, Qt::Key_9, Qt::ControlModifier);
    EXPECT_EQ(list.SortColumn(), 8);
}

TEST_F(SortList, AnEmptyListShowsItsFocus) {
    list.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&list));
    ASSERT_TRUE(list.hasFocus());
    const QImage focused = list.viewport()->grab().toImage();
    list.clearFocus();
    EXPECT_NE(list.viewport()->grab().toImage(), focused);
}

TEST_F(SortList, NewRowsStandAtTheEndUntilTheNextSorting) {
    AddSamples();
    list.SortByColumn(0, false);
    EXPECT_EQ(list.AddRow("99", "New", ""), 4);
    EXPECT_EQ(Column(list, 0), (Strings{"10", "9", "02", "01", "99"}));
    EXPECT_EQ(list.SortColumn(), 0);
    list.SortByColumn(0, false);
    EXPECT_EQ(Column(list, 0), (Strings{"99", "10", "9", "02", "01"}));
}

TEST_F(SortList, SamplesWidenWhatTheyDoNotFitAtEveryFontSize) {
    list.SetColumnSamples({"00", "short", "0000/00/00 00:00:00"});
    for (int size = 8; size <= 16; ++size) {
        QFont font = list.font();
        font.setPointSize(size);
        list.setFont(font);
        list.DeleteAllRows();
        list.AddRow("16", "short", "2004/02/29 08:15:00");
        for (int column = 0; column < 3; ++column) {
            const int needed = list.sizeHintForIndex(list.model()->index(0, column)).width();
            EXPECT_GE(list.columnWidth(column), needed) << size << " pt, column " << column;
        }
    }
    EXPECT_GE(list.columnWidth(1), 80);
}

// The header, painted in three colours that are told apart.
class SortHeader : public SortList {
protected:
    SortHeader() {
        QPalette palette;
        palette.setColor(QPalette::Button, kFace);
        palette.setColor(QPalette::Light, kLight);
        palette.setColor(QPalette::Dark, kDark);
        palette.setColor(QPalette::ButtonText, kText);
        list.SortHeader().setPalette(palette);
    }

    // Column's item.
    QImage Item(int column) {
        const CSortHeaderCtrl& header = list.SortHeader();
        const QRect item(header.sectionViewportPosition(column), 0, header.sectionSize(column),
                         header.height());
        return header.viewport()->grab(item).toImage();
    }

    // Where the label's pixels are: neither face nor arrow. The lines at the edges don't count.
    static QRect Label(const QImage& item) {
        QRect label;
        for (int y = 0; y < item.height() - 1; ++y) {
            for (int x = 0; x < item.width() - 1; ++x) {
                const QColor colour = item.pixelColor(x, y);
                if (colour != kFace && colour != kLight && colour != kDark) label |= {x, y, 1, 1};
            }
        }
        return label;
    }

    static void ExpectArrow(const QImage& item, bool ascending) {
        const int off = HeaderMargin(item.height());
        QImage expected = item;
        const QRect room(item.width() - 4 * off, 0, 4 * off - 1, item.height() - 1);
        for (int y = room.top(); y <= room.bottom(); ++y) {
            for (int x = room.left(); x <= room.right(); ++x) expected.setPixelColor(x, y, kFace);
        }
        for (const ArrowPixel& pixel : SortArrow(item.width(), item.height(), ascending)) {
            expected.setPixelColor(pixel.x, pixel.y, pixel.light ? kLight : kDark);
        }
        EXPECT_EQ(item, expected);
    }

    static constexpr QColor kFace{192, 192, 192};
    static constexpr QColor kLight{255, 255, 255};
    static constexpr QColor kDark{128, 128, 128};
    static constexpr QColor kText{0, 0, 160};
};

TEST_F(SortHeader, TheArrowMarksTheSortedColumnOnly) {
    const QImage styled = Item(2);
    ClickColumn(list, 1);
    ExpectArrow(Item(1), true);
    EXPECT_EQ(Item(2), styled);
    ClickColumn(list, 1);
    ExpectArrow(Item(1), false);
    ClickColumn(list, 2);
    ExpectArrow(Item(2), true);
    // The column that was sorted before stays flat, without an arrow.
    EXPECT_EQ(list.SortHeader().GetItemFormat(1), HDF_OWNERDRAW);
    EXPECT_EQ(list.SortHeader().GetItemFormat(0), HDF_LEFT);
    const QImage before = Item(1);
    const int off = HeaderMargin(before.height());
    for (int x = before.width() - 4 * off; x < before.width() - 1; ++x) {
        EXPECT_EQ(before.pixelColor(x, before.height() / 2), kFace) << x;
    }
}

TEST_F(SortHeader, NamesBeginWhereTheTextsBelowDo) {
    const auto firstOfText = [](const QImage& image) {
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const QColor colour = image.pixelColor(x, y);
                if (colour.blue() - colour.red() > 40) return x;
            }
        }
        return -1;
    };
    QPalette palette = list.palette();
    palette.setColor(QPalette::Text, kText);
    list.setPalette(palette);
    for (const int points : {8, 10, 14}) {
        QFont font = list.font();
        font.setPointSize(points);
        list.setFont(font);
        list.DeleteAllRows();
        list.AddRow("ID", "Name", "Date");
        for (int column = 0; column < 3; ++column) {
            const QRect cell = list.visualRect(list.model()->index(0, column));
            const int text = firstOfText(list.viewport()->grab(cell).toImage());
            EXPECT_GT(text, 0);
            EXPECT_EQ(firstOfText(Item(column)), text) << points << " pt, column " << column;
        }
    }
}

TEST_F(SortHeader, TheArrowShowsOnEveryPalette) {
    const std::vector<std::pair<QColor, QColor>> palettes = {
        {Qt::white, Qt::black},
        {QColor(239, 239, 239), Qt::black},
        {QColor(53, 53, 53), Qt::white},
        {Qt::black, Qt::white},
        {QColor(20, 40, 80), QColor(255, 220, 120)}};
    for (const auto& [face, text] : palettes) {
        QPalette palette(face);
        palette.setColor(QPalette::ButtonText, text);
        list.SortHeader().setPalette(palette);
        for (const bool ascending : {true, false}) {
            list.SortHeader().SetSortArrow(1, ascending);
            const QImage item = Item(1);
            for (const ArrowPixel& pixel : SortArrow(item.width(), item.height(), ascending)) {
                const int difference = qGray(item.pixel(pixel.x, pixel.y)) - qGray(face.rgb());
                EXPECT_GE(std::abs(difference), 50) << face.name().toStdString();
            }
        }
    }
}

}  // namespace
}  // namespace marvolen
