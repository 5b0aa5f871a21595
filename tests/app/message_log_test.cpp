#include "app/message_log.h"

#include "app/log_export.h"
#include "app/log_text.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace marvolen {
namespace {

TEST(Log, ExportHasEveryEntryInTheDisplayedOrder) {
    const test::TemporaryFolder folder;
    CSortListCtrl list;
    SYSTEMTIME now{2004, 2, 0, 29, 8, 15, 0, 0};
    MessageLog log(list, [&now] { return now; });
    g_channelInfo = FactoryChannelTable();
    SetFieldText(g_channelInfo[2].netName, "Gate");
    SetFieldText(g_channelInfo[8].netName, "Tür, \"Süd\"");
    std::ranges::fill(g_channelInfo[15].netName, 'n');
    log.AddLogEntry(&g_channelInfo[15], "Unknown Error.");
    log.AddLogEntry(&g_channelInfo[2], "Network close.");
    now.second = 1;
    log.AddLogEntry(&g_channelInfo[8], "Network error.");
    g_channelInfo = FactoryChannelTable();  // what is logged keeps its names
    const std::string line16 =
        "16," + std::string(kTextFieldSize - 1, 'n') + ",2004/02/29 08:15:00,Unknown Error.\n";
    const std::string line3 = "03,Gate,2004/02/29 08:15:00,Network close.\n";
    const std::string line9 = "09,Tür, \"Süd\",2004/02/29 08:15:01,Network error.\n";
    const auto exported = [&list] {
        EXPECT_TRUE(ExportRows(list, "log.csv"));
        return test::ReadWholeFile("log.csv");
    };
    EXPECT_EQ(exported(), line16 + line3 + line9);
    list.SortByColumn(0, true);
    EXPECT_EQ(exported(), line3 + line9 + line16);
    log.Clean();
    EXPECT_EQ(exported(), "") << "the file before is replaced";
}

// It is found out on the way, or when the file is closed.
TEST(Log, AFullDiskFailsTheExport) {
    const LogTexts row{"02", "Gate", "2004/02/29 08:15:00", "Network error."};
    for (const int rows : {1, 100'000}) {
        int asked = 0;
        EXPECT_FALSE(WriteLogFile("/dev/full", rows, [&](int) {
            ++asked;
            return std::span<const std::string>(row);
        }));
        EXPECT_TRUE(rows == 1 || asked < rows) << "goes on in vain";
    }
}

// Where an event has no room its last word is seen, which it differs in.
TEST(Log, EventsLookDifferentInANarrowList) {
    CSortListCtrl list;
    MessageLog log(list);
    for (const char* event : {"connect.", "close.", "error."}) {
        log.AddLogEntry(&g_channelInfo[0], std::string("Network ") + event);
    }
    list.resize(list.columnWidth(0) + list.columnWidth(1) + list.columnWidth(2) + 70, 300);
    list.show();
    QImage seen[3];
    for (int row = 0; row < 3; ++row) {
        const QRect cell = list.visualRect(list.model()->index(row, 3));
        seen[row] = list.viewport()->grab(cell & list.viewport()->rect()).toImage();
    }
    EXPECT_TRUE(seen[0] != seen[1] && seen[1] != seen[2] && seen[2] != seen[0]);
}

// A file that can't be made is told, once; what is asked before is the file chooser's.
TEST(Log, SaveAsTellsOfAFileThatCannotBeMade) {
    const test::TemporaryFolder folder;
    CSortListCtrl list;
    QWidget window;
    window.setWindowTitle(QStringLiteral("Marvolen"));
    QTimer poll;
    QStringList told;
    QObject::connect(&poll, &QTimer::timeout, &window, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            told << box->windowTitle() << box->text();
            box->accept();
        } else if (auto* field = modal ? modal->findChild<QLineEdit*>() : nullptr) {
            EXPECT_EQ(field->text(), QStringLiteral("message.csv"));
            field->setText(QString::fromStdString(folder.Path() / "missing" / "log.csv"));
            QTest::keyClick(field, Qt::Key_Return);
        }
    });
    poll.start(5);
    SaveLogAs(&window, list);
    EXPECT_EQ(told, (QStringList{QStringLiteral("Marvolen"), QStringLiteral("Unable To Save!")}));
}

}  // namespace
}  // namespace marvolen
