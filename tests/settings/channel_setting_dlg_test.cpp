// The Channel Setting dialog under a hand: pages, tabs that are dragged, files, the clipboard.

#include "settings/channel_setting_dlg.h"

#include "config/settings_file.h"
#include "platform/clipboard.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "res/resources.h"
#include "settings/channel_page_dlg.h"
#include "settings/machine_property.h"
#include "tests/support/event_loop.h"
#include "tests/support/process_resources.h"
#include "tests/support/temporary_folder.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>

#include <cstring>
#include <functional>
#include <sys/stat.h>

namespace marvolen::test {
namespace {

const std::string kEnd = "==========\r\n";

// Records that differ in every field, with something behind each text's NUL.
ChannelTable DistinctTable() {
    ChannelTable table;
    std::memset(table.data(), 0xE9, sizeof table);
    for (int k = 0; k < kChannelCount; ++k) {
        ChannelInfo& r = table[static_cast<std::size_t>(k)];
        const std::string n = std::to_string(k + 1);
        r.channelIndex = k;
        SetFieldText(r.netName, "name \xE9" + n);  // not UTF-8
        SetFieldText(r.host, "no@" + n);           // leads nowhere
        SetFieldText(r.port, "80" + n);
        SetFieldText(r.userName, "user" + n);
        SetFieldText(r.password, "word\xFF" + n);
        SetFieldText(r.recordPath, "/tmp/path" + n);
        r.maxSizeMB = 100 * k - 300;
        r.cameraIndex = k % 5;  // 4 is no row
        r.sizeIndex = k % 3 - (k == 9);
        r.rateIndex = k % 10;
    }
    return table;
}

// The numbers of the records that differ in any byte.
std::string Differing(const ChannelTable& a, const ChannelTable& b) {
    std::string result;
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (std::memcmp(&a[k], &b[k], sizeof a[k]) != 0) result += std::to_string(k + 1) + " ";
    }
    return result;
}

class ChannelSettingDlg : public ::testing::Test {
protected:
    ChannelSettingDlg() {
        g_channelInfo = DistinctTable();
        // Boxes are noted and closed, choosers get what is to be chosen.
        poll.callOnTimeout(&poll, [this] {
            QWidget* const modal = QApplication::activeModalWidget();
            if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
                boxes += box->text().toStdString() + "|";
                box->accept();
            } else if (auto* const chooser = qobject_cast<QFileDialog*>(modal)) {
                auto* const edit = chooser->findChild<QLineEdit*>();
                proposed = edit->text().toStdString();
                edit->setText(QString::fromStdString((folder.Path() / fileName).string()));
                QTest::keyClick(edit, Qt::Key_Return);
            }
        });
        poll.start(1);
    }
    ~ChannelSettingDlg() override { g_channelInfo = FactoryChannelTable(); }

    // Runs the dialog, act under its hands, ends it by this command and compares its table.
    void Run(const ChannelTable& expected, const std::function<void()>& act, int end = IDOK,
             int tab = 2) {
        CChannelSettingDlg made(nullptr);
        dialog = &made;
        made.SetInitialTab(tab);
        QTimer::singleShot(0, &made, [&] {
            EXPECT_TRUE(QTest::qWaitForWindowActive(&made));
            act();
            EXPECT_FALSE(QApplication::activeModalWidget());
            Click(end);
        });
        EXPECT_EQ(made.DoModal(), end);
        dialog = nullptr;
        EXPECT_EQ(Differing(made.Channels(), expected), "");
    }
    CChannelTabCtrl& Tabs() { return *dialog->GetDlgItem<CChannelTabCtrl>(IDC_SETTING_TABS); }
    CChannelPageDlg& Page(int k) { return *Tabs().GetPage(k); }
    template <typename Control = QLineEdit>
    Control& Item(int id, int k = 2) {
        return *Page(k).GetDlgItem<Control>(id);
    }
    void Click(int id) { QTest::mouseClick(dialog->GetDlgItem(id), Qt::LeftButton); }
    void Type(int id, const std::string& text) {
        Item(id).selectAll();
        QTest::keyClick(&Item(id), Qt::Key_Delete);
        QTest::keyClicks(&Item(id), QString::fromStdString(text));
    }
    QPoint Middle(int tab) { return Tabs().GetItemRect(tab).center(); }
    void SelectTab(int k) { QTest::mouseClick(&Tabs(), Qt::LeftButton, {}, Middle(k)); }
    // The pages that are seen, which should be one.
    std::vector<int> Seen() {
        std::vector<int> seen;
        for (int k = 0; k < Tabs().GetItemCount(); ++k) {
            if (Page(k).isVisible()) seen.push_back(k);
        }
        return seen;
    }
    void Drag(int from, QPoint to) {
        QTest::mousePress(&Tabs(), Qt::LeftButton, {}, Middle(from));
        QMouseEvent move(QEvent::MouseMove, to, Tabs().mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(&Tabs(), &move);
        const int over = Tabs().HitTest(to);
        const QCursor shown = LoadCursor(over < 0 ? IDC_CLEAR_CURSOR : IDC_DROP_CURSOR);
        EXPECT_EQ(Tabs().cursor().pixmap().toImage(),
                  over == from ? QImage() : shown.pixmap().toImage());
    }
    void Drop(QPoint to) {
        QTest::mouseRelease(&Tabs(), Qt::LeftButton, {}, to);
        QCoreApplication::processEvents();
    }
    // Drops a tab onto another and takes this item of the menu.
    void DragOnto(int from, int to, int command) {
        Drag(from, Middle(to));
        Drop(Middle(to));
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        std::string texts;
        QAction* chosen = nullptr;
        for (QAction* action : menu->actions()) {
            texts += action->text().toStdString() + ",";
            if (action->objectName() == QString::number(command)) chosen = action;
        }
        EXPECT_EQ(texts, "Move,Copy,Swap,,Cancel,");
        ASSERT_TRUE(chosen);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(chosen).center());
        ASSERT_TRUE(WaitUntil([] { return !QApplication::activePopupWidget(); }));
        QCoreApplication::processEvents();
    }
    // Clicks a button and chooses a file.
    void ChooseFile(QWidget& button, const std::string& name) {
        fileName = name;
        QTest::mouseClick(&button, Qt::LeftButton);
    }

    TemporaryFolder folder;
    std::string boxes;               // their texts, each with a bar behind it
    std::string proposed, fileName;  // names of a file
    QTimer poll;
    CChannelSettingDlg* dialog = nullptr;
};

TEST_F(ChannelSettingDlg, ChangesNothingThatNobodyChanged) {
    for (const int end : {IDOK, IDCANCEL}) {
        Run(
            DistinctTable(),
            [&] {
                EXPECT_EQ(Seen(), std::vector<int>{2});
                for (int k = 0; k < kChannelCount; ++k) {
                    SelectTab(k);
                    ASSERT_EQ(Seen(), std::vector<int>{k});
                }
            },
            end);
    }
}

TEST_F(ChannelSettingDlg, StoresWhatIsTypedAndNoMoreThanAFieldHolds) {
    ChannelTable expected = DistinctTable();
    SetFieldText(expected[2].host, "10.0.0.5");
    SetFieldText(expected[2].netName, "(10.0.0.5)");
    SetFieldText(expected[2].port, std::string(259, '8'));
    SetFieldText(expected[2].userName, std::string(256, 'u'));
    SetFieldText(expected[2].password, "\u20ac");
    SetFieldText(expected[2].recordPath, (folder.Path() / "chl07.dbt").string());
    expected[2].channelIndex = g_channelInfo[2].channelIndex = 6;
    expected[2].maxSizeMB = 12;
    expected[2].cameraIndex = 3;
    expected[2].sizeIndex = 0;
    expected[2].rateIndex = 9;
    Run(expected, [&] {
        Type(IDC_PAGE_HOST, "10.0.0.5");
        Type(IDC_PAGE_NET_NAME, "");
        Type(IDC_PAGE_PORT, std::string(300, '8'));
        Item(IDC_PAGE_USER_NAME).clear();
        Item(IDC_PAGE_USER_NAME).insert(QString(256, QLatin1Char('u')));
        Item(IDC_PAGE_USER_NAME).insert(QString::fromUcs4(U"\U0001F600"));
        Item(IDC_PAGE_PASSWORD).clear();
        Item(IDC_PAGE_PASSWORD).insert(QStringLiteral("\u20ac"));
        Type(IDC_PAGE_MAX_SIZE, " 12MB");
        Item<QComboBox>(IDC_PAGE_CAMERA).setCurrentIndex(3);
        Item<QComboBox>(IDC_PAGE_SIZE).setCurrentIndex(0);
        Item<QComboBox>(IDC_PAGE_RATE).setCurrentIndex(9);
        QWidget& choose = Item<QWidget>(IDC_PAGE_CHOOSE_PATH);
        ChooseFile(choose, "chl07");
        EXPECT_EQ(proposed, "chl07");
        std::filesystem::path deep = folder.Path();
        for (int k = 0; k < 2; ++k) deep /= std::string(130, 'd');
        std::filesystem::create_directories(deep);
        ChooseFile(choose, (deep / "x.dbt").string());
        EXPECT_EQ(boxes, "The path is too long.|");
    });
    EXPECT_FALSE(std::filesystem::exists("chl07.dbt"));
}

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

TEST_F(ChannelSettingDlg, LoadsAndSavesSettingsFiles) {
    ChannelTable other = FactoryChannelTable();
    SetFieldText(other[2].port, "1");
    other[2].channelIndex = -7;
    WriteSettingsFile("other.rsf", other);
    std::string bytes = ReadWholeFile("other.rsf");
    WriteWholeFile("short.rsf", bytes.substr(1));
    WriteWholeFile("long.rsf", bytes + "x");
    ASSERT_EQ(mkfifo("pipe.rsf", 0600), 0);
    std::filesystem::create_symlink("/no/such/folder/x.rsf", "nowhere.rsf");
    ChannelTable typed = DistinctTable();
    SetFieldText(typed[2].port, "99");
    Run(other, [&] {
        QWidget& load = *dialog->GetDlgItem(IDC_SETTING_LOAD);
        QWidget& save = *dialog->GetDlgItem(IDC_SETTING_SAVE);
        Type(IDC_PAGE_PORT, "99");
        ChooseFile(save, "typed");
        EXPECT_EQ(proposed, "ChanInfo");
        ChannelTable saved{};
        EXPECT_TRUE(ReadSettingsFile("typed.rsf", saved));
        EXPECT_EQ(Differing(saved, typed), "");
        ChooseFile(save, "other.rsf");  // nobody asks
        WriteSettingsFile("other.rsf", other);
        EXPECT_EQ(boxes, "");
        ChooseFile(save, "nowhere.rsf");
        EXPECT_EQ(boxes, "Unable To Save!|");
        for (const char* name : {"short.rsf", "long.rsf", "pipe.rsf"}) {
            boxes.clear();
            ChooseFile(load, name);
            EXPECT_EQ(boxes, "Invalid File|");
            EXPECT_EQ(Item(IDC_PAGE_PORT).text().toInt(), 99);
        }
        boxes.clear();
        for (int time = 0; time < 2; ++time) {
            ChooseFile(load, "other.rsf");
            EXPECT_EQ(Item(IDC_PAGE_PORT).text().toInt(), 1);
            std::string labels;
            for (const int id : {IDC_PAGE_CAMERA, IDC_PAGE_SIZE, IDC_PAGE_RATE}) {
                auto& box = Item<QComboBox>(id);
                labels += std::to_string(box.currentIndex()) + ":";
                for (int k = 0; k < box.count(); ++k) labels += box.itemText(k).toStdString() + ",";
            }
            EXPECT_EQ(labels,
                      "0:Camera 1,Camera 2,Camera 3,Camera 4,1:Large,Middle,Small,"
                      "0:30  fps,15  fps,10  fps,7.5 fps,5   fps,3   fps,1   fps,0.5 fps,"
                      "0.2 fps,0.1 fps,");
        }
        EXPECT_EQ(boxes, "");
    });
    EXPECT_EQ(Differing(g_channelInfo, DistinctTable()), "");
}

TEST_F(ChannelSettingDlg, PastesAddresses) {
    const std::string head(kMachinePropertyHeader);
    const auto block = [](const std::string& host) {
        return "Model:M\r\nIPAddress:" + host + "\r\nPort: 8\r\n" + kEnd;
    };
    // What is pasted with this tab selected, what it says, and the hosts that come.
    struct Case {
        int tab;
        std::string text, says;
        std::vector<std::string> hosts;
    };
    for (const Case& c : std::vector<Case>{
             {2, "", "No data in clipboard", {}},
             {2, "DVR_MACHINE_PROPERTY\r\n=========\r\n", "Clipboard data invalid", {}},
             {2, std::string(1 << 20, '='), "Clipboard data invalid", {}},
             {2, head, "", {}},
             {2, "DVR_MACHINE_PROPERTY\n==========\nPort: 8\n==========\n", "", {""}},
             {2, head + block("10.1.2.3") + block("") + block("b:c"), "", {"10.1.2.3", "", "b:c"}},
             {14, head + block("1") + block("2") + block("3") + "rubbish", "", {"1", "2"}},
             {2, head + block("1") + "\r\n" + block("2"), "Translate Failed!", {"1"}},
             {2, head + block("1") + "IPAddress:2\r\n=====", "Translate Failed!", {"1"}},
             {2, head + block("1") + std::string("\0", 1) + block("2"), "", {"1"}},
             {2,
              head + block("1") + "Port:" + std::string("\0\r\n", 3) + kEnd,
              "Translate Failed!",
              {"1"}},
             {2, head + std::string(1 << 20, 'x'), "Translate Failed!", {}},
             {2, head + block(std::string(1 << 20, 'x')), "", {std::string(259, 'x')}},
         }) {
        ChannelTable expected = DistinctTable();
        for (std::size_t k = 0; k < c.hosts.size(); ++k) {
            PageFields fields = FieldsOf(expected[static_cast<std::size_t>(c.tab) + k]);
            fields.host = c.hosts[k];
            fields.port = " 8";
            fields.netName = fields.host.empty() ? "" : "(" + fields.host + ")";
            Commit(fields, expected[static_cast<std::size_t>(c.tab) + k]);
        }
        Run(
            expected,
            [&] {
                boxes.clear();
                if (c.text.empty()) {
                    QApplication::clipboard()->clear();
                } else {
                    SetClipboardText(QString::fromStdString(c.text));
                }
                Click(IDC_SETTING_PASTE);
                EXPECT_EQ(boxes, c.says.empty() ? c.says : c.says + "|");
                EXPECT_EQ(Tabs().GetCurSel(), c.tab);
                const int last = c.tab + std::max(0, int(c.hosts.size()) - 1);
                EXPECT_EQ(Seen(), std::vector<int>{last});
            },
            IDOK, c.tab);
    }
}

// As when the program is asked to end.
TEST_F(ChannelSettingDlg, EndsWithAllWindowsWhateverIsOpenOverIt) {
    poll.stop();
    SetClipboardText(QStringLiteral("rubbish"));
    const std::vector<std::function<void()>> openers{
        [this] { Click(IDC_SETTING_LOAD); },
        [this] { Click(IDC_SETTING_SAVE); },
        [this] { Click(IDC_SETTING_PASTE); },
        [this] { QTest::mouseClick(&Item<QWidget>(IDC_PAGE_CHOOSE_PATH), Qt::LeftButton); },
        [this] { Drag(2, Middle(6)), Drop(Middle(6)); },
        [this] {
            Drag(2, {-500, 30});
            QTest::mouseRelease(&Tabs(), Qt::LeftButton, {}, {-500, 30});
            QApplication::closeAllWindows();  // before the command is carried out
        },
    };
    for (const auto& open : openers) {
        CChannelSettingDlg made(nullptr);
        dialog = &made;
        made.SetInitialTab(2);
        QTimer::singleShot(0, &made, [&] {
            EXPECT_TRUE(QTest::qWaitForWindowActive(&made));
            QTimer::singleShot(0, &made, &QApplication::closeAllWindows);
            open();
        });
        EXPECT_EQ(made.DoModal(), IDCANCEL);
        EXPECT_FALSE(QApplication::activeModalWidget());
        QCoreApplication::processEvents();  // commands that were under way
    }
}

TEST_F(ChannelSettingDlg, KeepsOneConnectionOfThePageInSight) {
    LoopbackListener camera;
    g_channelInfo = FactoryChannelTable();
    for (ChannelInfo& record : g_channelInfo) {
        SetFieldText(record.host, "127.0.0.1");
        SetFieldText(record.port, std::to_string(camera.Port()));
        SetFieldText(record.netName, "Camera");
    }
    g_channelInfo[3].rateIndex = 9;
    ChannelTable expected = g_channelInfo;
    expected[3].rateIndex = 1;
    Run(expected, [&] {
        // The query of the next connection.
        const auto query = [&camera](LoopbackPeer& peer) {
            peer = camera.Accept();
            QCoreApplication::processEvents();  // connected: it sends at once
            const std::string request = peer.ReceiveUntil("\r\n\r\n");
            return request.substr(0, request.find(" HTTP"));
        };
        LoopbackPeer former, next, third;
        EXPECT_EQ(query(former), "GET /getimage?camera=1&fmt=sif");
        SelectTab(3);
        EXPECT_TRUE(former.IsEnded());
        EXPECT_EQ(query(next), "GET /getimage?camera=1&fmt=sif&delay=997");
        // Enter in a field is "Connect", once, with what was typed.
        Item<QComboBox>(IDC_PAGE_RATE, 3).setCurrentIndex(1);
        QTest::keyClick(&Item(IDC_PAGE_HOST, 3), Qt::Key_Return);
        EXPECT_TRUE(next.IsEnded());
        EXPECT_EQ(query(third), "GET /getimage?camera=1&fmt=sif&delay=3");
        camera.Close();
        const std::size_t descriptors = OpenDescriptors();
        for (int k = 0; k < 1000; ++k) SelectTab(k % kChannelCount);
        EXPECT_LE(OpenDescriptors(), descriptors);
    });
}

}  // namespace
}  // namespace marvolen::test
