#include "platform/list_control.h"

#include "tests/support/event_loop.h"

#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>
#include <vector>

namespace marvolen {
namespace {

struct NumberedItem final : CListCtrl::Item {
    explicit NumberedItem(int itsNumber) : number(itsNumber) {}
    QString Text(int column) const override {
        return column == 0 ? QString::number(number) : QStringLiteral("<b>text & more</b>");
    }
    const int number;
};

class ListControl : public ::testing::Test {
protected:
    ListControl() {
        list.InsertColumn(0, QStringLiteral("Number"), HDF_LEFT, 60);
        list.InsertColumn(1, QStringLiteral("Text"), HDF_RIGHT, 80);
        list.resize(200, 150);
        list.show();
    }
    void Add(int count) {
        for (int k = 0; k < count; ++k) {
            const int row = list.GetItemCount();
            EXPECT_EQ(list.InsertItem(std::make_unique<NumberedItem>(row)), row);
        }
        QCoreApplication::processEvents();
    }
    QRect Cell(int row, int column) const {
        return list.visualRect(list.model()->index(row, column));
    }
    bool ShowsLastRow() const {
        return list.viewport()->rect().contains(Cell(list.GetItemCount() - 1, 0));
    }
    CListCtrl list;
};

TEST_F(ListControl, FollowsNewRowsOnlyFromItsEnd) {
    for (const int count : {100, 1}) {
        Add(count);
        EXPECT_TRUE(ShowsLastRow());
    }
    list.verticalScrollBar()->setValue(10);
    Add(20);
    EXPECT_EQ(list.verticalScrollBar()->value(), 10);
    list.scrollToBottom();
    list.resize(200, 90);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ShowsLastRow());
    list.DeleteAllItems();
    Add(100);
    EXPECT_TRUE(ShowsLastRow());
}

TEST_F(ListControl, TheSelectionStaysWithItsRowAndIsCopied) {
    Add(4);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, Cell(1, 1).center());
    const std::vector<std::size_t> order = {3, 2, 0, 1};
    list.SortItems(order);
    EXPECT_EQ(list.GetItem(0)->Text(0), QStringLiteral("3"));
    EXPECT_EQ(list.GetItem(4), nullptr);
    Add(1);
    EXPECT_EQ(list.GetSelectedItem(), 3);
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("1\t<b>text & more</b>"));
    list.DeleteAllItems();
    EXPECT_EQ(list.GetSelectedItem(), -1);
}

TEST_F(ListControl, ARowWithACutTextShowsWholeAndLiterallyAsAToolTip) {
    Add(3);
    const auto hover = [this](const QPoint& point) {
        QHelpEvent help(QEvent::ToolTip, point, list.viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(list.viewport(), &help);
    };
    hover(Cell(2, 0).center());
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("2  &lt;b&gt;text &amp; more")));
    hover({5, list.viewport()->height() - 2});  // below the rows
    EXPECT_TRUE(test::WaitUntil([] { return !QToolTip::isVisible(); }));
    list.resize(500, 150);
    list.setColumnWidth(1, 400);
    hover(Cell(2, 1).center());  // shown in full
    EXPECT_FALSE(QToolTip::isVisible());
}

}  // namespace
}  // namespace marvolen
