#include "app/message_log.h"

#include "app/log_export.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using Row = std::vector<std::string>;

class Log : public ::testing::Test {
protected:
    Log() {
        g_channelInfo = FactoryChannelTable();
        Rename(3, "Gate");
    }
    ~Log() override { g_channelInfo = FactoryChannelTable(); }

    static ChannelInfo& Info(int number) {
        return g_channelInfo[static_cast<std::size_t>(number - 1)];
    }
    static void Rename(int number, std::string_view name) {
        SetFieldText(Info(number).netName, name);
    }
    const Row& Texts(int row) const { return list.GetRowData(row)->texts; }

    CSortListCtrl list;
    SYSTEMTIME now{2004, 2, 0, 29, 8, 15, 0, 0};
    MessageLog log{list, [this] { return now; }};
};

TEST_F(Log, EntriesTellChannelNameTimeAndEvent) {
    ASSERT_EQ(list.ColumnCount(), 4);
    log.AddLogEntry(&Info(3), "Network close.");
    now.second = 1;
    log.AddLogEntry(&Info(16), "Unknown Error.");
    EXPECT_EQ(Texts(0), (Row{"03", "Gate", "2004/02/29 08:15:00", "Network close."}));
    EXPECT_EQ(Texts(1), (Row{"16", "", "2004/02/29 08:15:01", "Unknown Error."}));
}

TEST_F(Log, ExportFollowsTheDisplayedOrder) {
    const test::TemporaryFolder folder;
    Rename(16, "");
    Rename(9,
           "T\xC3\xBCr, S\xC3\xBC"
           "d");
    log.AddLogEntry(&Info(16), "Unknown Error.");
    log.AddLogEntry(&Info(3), "Network close.");
    log.AddLogEntry(&Info(9), "Network error.");
    const std::string line16 = "16,,2004/02/29 08:15:00,Unknown Error.\n";
    const std::string line3 = "03,Gate,2004/02/29 08:15:00,Network close.\n";
    const std::string line9 =
        "09,T\xC3\xBCr, S\xC3\xBC"
        "d,2004/02/29 08:15:00,Network error.\n";
    EXPECT_TRUE(ExportRows(list, "log.csv"));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), line16 + line3 + line9);
    list.SortByColumn(0, true);
    EXPECT_TRUE(ExportRows(list, "log.csv"));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), line3 + line9 + line16);
    log.Clean();
    EXPECT_TRUE(ExportRows(list, "log.csv"));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), "");
}

// A file that can't be made is told, once; what is asked before is the file chooser's.
TEST_F(Log, SaveAsTellsOfAFileThatCannotBeMade) {
    const test::TemporaryFolder folder;
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
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace marvolen
