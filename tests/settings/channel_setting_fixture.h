#pragma once

// The Channel Setting dialog under a hand.

#include "config/settings_file.h"
#include "platform/clipboard.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "res/resources.h"
#include "settings/channel_page_dlg.h"
#include "settings/channel_setting_dlg.h"
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

inline const std::string kEnd = "==========\r\n";

// Records that differ in every field, with something behind each text's NUL.
inline ChannelTable DistinctTable() {
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
inline std::string Differing(const ChannelTable& a, const ChannelTable& b) {
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

}  // namespace marvolen::test
