#include "platform/list_control.h"

#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace marvolen {
namespace {

// A row that shows its number and counts how many of its kind there are.
class CountedItem final : public CListCtrl::Item {
public:
    CountedItem(int itsNumber, int& counter) : number(itsNumber), alive(counter) { ++alive; }
    ~CountedItem() override { --alive; }
    QString Text(int column) const override {
        return column == 0 ? QString::number(number) : QStringLiteral("<b>text & more</b>");
    }

private:
    const int number;
    int& alive;
};

class ProbeList final : public CListCtrl {
public:
    std::vector<int> clicks;

protected:
    void OnColumnClick(int column) override { clicks.push_back(column); }
};

class ListControl : public ::testing::Test {
protected:
    ListControl() {
        list->InsertColumn(0, QStringLiteral("Number"), HDF_LEFT, 60);
        list->InsertColumn(1, QStringLiteral("Text"), HDF_RIGHT, 80);
        list->resize(200, 150);
        list->show();
    }

    void Add(int count) {
        for (int k = 0; k < count; ++k) {
            const int row = list->GetItemCount();
            EXPECT_EQ(list->InsertItem(std::make_unique<CountedItem>(row, alive)), row);
        }
        QCoreApplication::processEvents();
    }

    QPoint HeaderPoint(int column) const {
        const CHeaderCtrl& header = *list->GetHeaderCtrl();
        return {header.sectionViewportPosition(column) + header.sectionSize(column) / 2,
                header.height() / 2};
    }

    QPoint CellPoint(int row, int column) const {
        return list->visualRect(list->model()->index(row, column)).center();
    }

    bool ShowsLastRow() const {
        const QRect last = list->visualRect(list->model()->index(list->GetItemCount() - 1, 0));
        return list->viewport()->rect().contains(last);
    }

    int alive = 0;
    std::unique_ptr<ProbeList> list = std::make_unique<ProbeList>();
};

TEST_F(ListControl, ColumnsKeepTheirWidthsAndRefuseWrongOnes) {
    EXPECT_EQ(list->InsertColumn(2, QStringLiteral("None"), HDF_LEFT, 0), 2);
    EXPECT_EQ(list->InsertColumn(4, QString(), HDF_LEFT, 10), -1);
    EXPECT_EQ(list->InsertColumn(-1, QString(), HDF_LEFT, 10), -1);
    EXPECT_EQ(list->InsertColumn(3, QString(), HDF_LEFT, -1), -1);
    EXPECT_EQ(list->InsertColumn(3, QString(), HDF_LEFT, CListCtrl::kWidestColumn + 1), -1);
    EXPECT_EQ(list->InsertColumn(3, QString(), HDF_LEFT, CListCtrl::kWidestColumn), 3);
    EXPECT_EQ(list->GetColumnCount(), 4);
    Add(3);
    list->DeleteAllItems();
    QCoreApplication::processEvents();
    EXPECT_EQ(list->columnWidth(0), 60);
    EXPECT_EQ(list->columnWidth(1), 80);
    EXPECT_EQ(list->columnWidth(2), 0);
    EXPECT_EQ(list->columnWidth(3), CListCtrl::kWidestColumn);
    EXPECT_EQ(list->GetHeaderCtrl()->GetItemFormat(1), HDF_RIGHT);
    EXPECT_EQ(list->GetHeaderCtrl()->GetItemText(1), QStringLiteral("Text"));
    EXPECT_FALSE(list->GetHeaderCtrl()->SetItemFormat(4, HDF_OWNERDRAW));
    EXPECT_FALSE(list->GetHeaderCtrl()->SetItemFormat(-1, HDF_OWNERDRAW));
}

TEST_F(ListControl, RowsLiveUntilTheyAreDeletedOrTheListGoes) {
    Add(100);
    EXPECT_EQ(alive, 100);
    EXPECT_NE(list->GetItem(99), nullptr);
    EXPECT_EQ(list->GetItem(100), nullptr);
    EXPECT_EQ(list->GetItem(-1), nullptr);
    list->DeleteAllItems();
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(list->GetItemCount(), 0);
    list->DeleteAllItems();
    Add(5);
    EXPECT_EQ(alive, 5);
    list.reset();
    EXPECT_EQ(alive, 0);
}

TEST_F(ListControl, FollowsNewRowsOnlyFromItsEnd) {
    Add(100);
    EXPECT_TRUE(ShowsLastRow());
    Add(1);
    EXPECT_TRUE(ShowsLastRow());
    list->verticalScrollBar()->setValue(10);
    Add(20);
    EXPECT_EQ(list->verticalScrollBar()->value(), 10);
    list->scrollToBottom();
    list->resize(200, 90);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ShowsLastRow());
    list->DeleteAllItems();
    Add(100);
    EXPECT_TRUE(ShowsLastRow());
}

TEST_F(ListControl, TheSelectionStaysWithItsRow) {
    Add(4);
    EXPECT_EQ(list->GetSelectedItem(), -1);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, CellPoint(1, 1));
    EXPECT_EQ(list->GetSelectedItem(), 1);
    const std::vector<std::size_t> order = {3, 2, 0, 1};
    list->SortItems(order);
    EXPECT_EQ(list->GetItem(0)->Text(0), QStringLiteral("3"));
    EXPECT_EQ(list->GetItem(3)->Text(0), QStringLiteral("1"));
    EXPECT_EQ(list->GetSelectedItem(), 3);
    Add(1);
    EXPECT_EQ(list->GetSelectedItem(), 3);
    QTest::keyClick(list.get(), Qt::Key_Up);
    EXPECT_EQ(list->GetSelectedItem(), 2);
    list->DeleteAllItems();
    EXPECT_EQ(list->GetSelectedItem(), -1);
}

TEST_F(ListControl, CopyTakesTheSelectedRow) {
    Add(3);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::keyClick(list.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, CellPoint(2, 0));
    QTest::keyClick(list.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("2\t<b>text & more</b>"));
}

TEST_F(ListControl, ReportsClicksOnColumnsButNotResizing) {
    Add(3);
    QWidget* header = list->GetHeaderCtrl()->viewport();
    QTest::mouseClick(header, Qt::LeftButton, {}, HeaderPoint(1));
    QTest::mouseClick(header, Qt::LeftButton, {}, HeaderPoint(0));
    QTest::mouseClick(header, Qt::RightButton, {}, HeaderPoint(0));
    EXPECT_EQ(list->clicks, (std::vector<int>{1, 0}));
    const QPoint edge(59, 5);
    QTest::mousePress(header, Qt::LeftButton, {}, edge);
    QTest::mouseMove(header, edge + QPoint(20, 0));
    QTest::mouseRelease(header, Qt::LeftButton, {}, edge + QPoint(25, 0));
    EXPECT_GT(list->columnWidth(0), 70);
    EXPECT_EQ(list->clicks.size(), 2U);
}

TEST_F(ListControl, TextsThatAreCutShowAsToolTipsLiterally) {
    Add(3);
    const auto hover = [this](const QPoint& point) {
        QHelpEvent help(QEvent::ToolTip, point, list->viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(list->viewport(), &help);
    };
    hover(CellPoint(0, 1));
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("&lt;b&gt;text &amp; more")));
    hover(CellPoint(0, 0));  // shown in full
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
    hover({5, list->viewport()->height() - 2});  // below the rows
    EXPECT_FALSE(QToolTip::isVisible());
}

}  // namespace
}  // namespace marvolen
