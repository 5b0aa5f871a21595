// The dialog's tabs: dragged onto one another and away, at every font, by keys and aids.

#include "tests/settings/channel_setting_fixture.h"

namespace marvolen::test {
namespace {

TEST_F(ChannelSettingDlg, DragsTabsOntoOneAnother) {
    // Where what stands on each page from NET.3 to NET.7 comes from.
    struct Case {
        int from, to, command;
        std::vector<int> pages;
    };
    for (const Case& c : std::vector<Case>{
             {2, 6, IDM_TAB_MOVE, {3, 4, 5, 6, 2}},
             {6, 2, IDM_TAB_MOVE, {6, 2, 3, 4, 5}},
             {2, 6, IDM_TAB_SWAP, {6, 3, 4, 5, 2}},
             {6, 2, IDM_TAB_SWAP, {6, 3, 4, 5, 2}},
             {2, 6, IDM_TAB_COPY, {2, 3, 4, 5, 2}},
             {6, 2, IDM_TAB_COPY, {6, 3, 4, 5, 6}},
             {2, 6, IDM_TAB_CANCEL, {2, 3, 4, 5, 6}},
             {0, 15, IDM_TAB_CANCEL, {2, 3, 4, 5, 6}},
         }) {
        const ChannelTable before = DistinctTable();
        ChannelTable expected = before;
        for (std::size_t k = 0; k < c.pages.size(); ++k) {
            PageFields fields = FieldsOf(before[static_cast<std::size_t>(c.pages[k])]);
            if (c.command == IDM_TAB_COPY) {
                fields.maxSize = FieldsOf(before[k + 2]).maxSize;
                fields.recordPath = FieldsOf(before[k + 2]).recordPath;
            }
            Commit(fields, expected[k + 2]);
        }
        Run(expected, [&] {
            DragOnto(c.from, c.to, c.command);
            EXPECT_EQ(Seen(), std::vector<int>{c.from});
        });
    }
}

TEST_F(ChannelSettingDlg, ClearsATabThatIsDroppedOutsideUnlessTheDragEndsBefore) {
    ChannelTable cleared = DistinctTable();
    PageFields fields = FieldsOf(cleared[2]);
    fields.host = fields.port = fields.netName = "";
    fields.userName = "root";
    fields.password = "tuvk";
    fields.cameraIndex = fields.rateIndex = 0;
    fields.sizeIndex = 1;
    Commit(fields, cleared[2]);
    const QPoint outside(-500, 30);
    const auto onPage = [this] { return Page(2).geometry().center(); };
    const std::vector<std::pair<bool, std::function<void()>>> cases{
        {true, [&] { Drag(2, outside), Drop(outside); }},
        {true, [&] { Drag(2, onPage()), Drop(onPage()); }},
        {false, [&] { Drag(2, Middle(2)), Drop(Middle(2)); }},
        {false,
         [&] {
             Drag(2, outside);
             QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
             Drop(outside);
         }},
        {false,
         [&] {
             Drag(2, outside);
             QEvent lost(QEvent::UngrabMouse);
             QCoreApplication::sendEvent(&Tabs(), &lost);
             Drop(outside);
         }},
        {true,  // the second of two quick clicks begins the drag
         [&] {
             SelectTab(2);
             QMouseEvent press(QEvent::MouseButtonDblClick, Middle(2),
                               Tabs().mapToGlobal(Middle(2)), Qt::LeftButton, Qt::LeftButton, {});
             QCoreApplication::sendEvent(&Tabs(), &press);
             Drop(outside);
         }},
        {false,  // the drag begins on the page
         [&] {
             QTest::mousePress(&Tabs(), Qt::LeftButton, {}, onPage());
             Drop(outside);
         }},
    };
    for (const auto& each : cases) {
        Run(each.first ? cleared : DistinctTable(), [&] {
            each.second();
            EXPECT_FALSE(QApplication::activePopupWidget());
            EXPECT_EQ(Seen(), std::vector<int>{2});
        });
    }
}

TEST_F(ChannelSettingDlg, HasSixteenTabsForEveryFontKeyAndAid) {
    const QFont before = QApplication::font();
    for (const int points : {7, 9, 14, 24}) {
        QFont font = before;
        font.setPointSize(points);
        QApplication::setFont(font);
        Run(g_channelInfo, [&] {
            QRect former;
            for (int k = 0; k < kChannelCount; ++k) {
                const QRect tab = Tabs().GetItemRect(k);
                EXPECT_TRUE(Tabs().rect().contains(tab) && !tab.intersects(Tabs().DisplayRect()));
                EXPECT_FALSE(tab.intersects(former));
                former = tab;
            }
            SelectTab(0);
            const std::pair<Qt::Key, int> keys[] = {{Qt::Key_Left, 0}, {Qt::Key_Right, 1},
                                                    {Qt::Key_End, 15}, {Qt::Key_Right, 15},
                                                    {Qt::Key_Up, -1},  {Qt::Key_Home, 0}};
            for (const auto& [key, tab] : keys) {
                QTest::keyClick(QApplication::focusWidget(), key);
                EXPECT_EQ(Seen(), std::vector<int>{tab < 0 ? Tabs().GetCurSel() : tab});
            }
            QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&Tabs());
            ASSERT_EQ(list->role(), QAccessible::PageTabList);
            QAccessibleInterface* const tab = list->focusChild();
            ASSERT_TRUE(tab && tab->role() == QAccessible::PageTab && tab->state().selected);
            EXPECT_EQ(tab->text(QAccessible::Name), QStringLiteral("NET.1"));
        });
    }
    QApplication::setFont(before);
}

}  // namespace
}  // namespace marvolen::test
