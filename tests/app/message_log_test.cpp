#include "app/message_log.h"

#include "app/log_export.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <random>
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

TEST_F(Log, RenamingAChannelLeavesItsPastEntries) {
    log.AddLogEntry(&Info(3), "Network connect.");
    Rename(3, "Yard");
    log.AddLogEntry(&Info(3), "Network close.");
    EXPECT_EQ(Texts(0)[1], "Gate");
    EXPECT_EQ(Texts(1)[1], "Yard");
}

TEST_F(Log, BeginsAnewAfterClean) {
    log.Clean();
    log.AddLogEntry(&Info(1), "Network connect.");
    log.AddLogEntry(&Info(2), "Network error.");
    log.Clean();
    EXPECT_EQ(list.GetItemCount(), 0);
    log.AddLogEntry(&Info(3), "Network close.");
    ASSERT_EQ(list.GetItemCount(), 1);
    EXPECT_EQ(Texts(0)[0], "03");
}

TEST_F(Log, ReadsTheClockForEveryEntry) {
    CSortListCtrl other;
    MessageLog real(other);
    const std::string before = FormatTime(LocalTimeNow());
    real.AddLogEntry(&Info(1), "Network connect.");
    const std::string after = FormatTime(LocalTimeNow());
    EXPECT_LE(before, other.GetRowData(0)->texts[2]);
    EXPECT_GE(after, other.GetRowData(0)->texts[2]);
}

// Every column up and down, over what the sorting before left: a hundred thousand rows.
TEST_F(Log, SortsAHundredThousandEntriesByEachColumn) {
    const std::vector<std::string> events = {"Network connect.", "Network close.", "Network error.",
                                             "Unknown Error."};
    std::mt19937 random(3);
    std::vector<Row> expected;
    for (int k = 0; k < 100'000; ++k) {
        const int number = static_cast<int>(random() % 16) + 1;
        Rename(number, "Camera " + std::to_string(random() % 40));
        now.minute = static_cast<std::uint16_t>(random() % 60);
        now.second = static_cast<std::uint16_t>(random() % 60);
        log.AddLogEntry(&Info(number), events[random() % events.size()]);
        expected.push_back(Texts(k));
    }
    for (int column = 0; column < 4; ++column) {
        for (const bool ascending : {true, false}) {
            const auto text = static_cast<std::size_t>(column);
            std::stable_sort(expected.begin(), expected.end(), [&](const Row& a, const Row& b) {
                const int order = std::strcoll(a[text].c_str(), b[text].c_str());
                return ascending ? order < 0 : order > 0;
            });
            list.SortByColumn(column, ascending);
            ASSERT_EQ(list.GetItemCount(), 100'000);
            int wrong = 0;
            for (int row = 0; row < list.GetItemCount(); ++row) {
                wrong += Texts(row) != expected[static_cast<std::size_t>(row)];
            }
            EXPECT_EQ(wrong, 0) << "column " << column << (ascending ? " up" : " down");
        }
    }
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

// Answers the dialogs that SaveLogAs shows, in this order, as a user does.
class SaveAs : public Log {
protected:
    SaveAs() { log.AddLogEntry(&Info(3), "Network close."); }

    // answer may open the next dialog, and then returns after that one's answer.
    template <typename Dialog>
    void Expect(std::function<void(Dialog&)> answer) {
        answers.push_back(
            {[](const QWidget& modal) { return qobject_cast<const Dialog*>(&modal) != nullptr; },
             [answer = std::move(answer)](QWidget& modal) {
                 answer(static_cast<Dialog&>(modal));
             }});
    }
    void ExpectFileDialog(const QString& name) {
        Expect<QFileDialog>([name](QFileDialog& dialog) {
            auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(field, nullptr);
            field->setText(name);
            QTest::keyClick(field, Qt::Key_Return);
        });
    }
    void ExpectQuestion(QMessageBox::StandardButton button) {
        Expect<QMessageBox>([button](QMessageBox& box) {
            ASSERT_NE(box.button(button), nullptr);
            QTest::mouseClick(box.button(button), Qt::LeftButton);
        });
    }
    void ExpectFailure() {
        Expect<QMessageBox>([](QMessageBox& box) {
            EXPECT_EQ(box.text(), QStringLiteral("Unable To Save!"));
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Marvolen"));
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
        });
    }

    void Run() {
        QWidget window;
        window.setWindowTitle(QStringLiteral("Marvolen"));
        next = 0;
        Watch(window);
        SaveLogAs(&window, list);
        EXPECT_EQ(next, answers.size());
    }

    void Watch(QObject& context) {
        QTimer::singleShot(5, &context, [this, &context] {
            Watch(context);
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal || !modal->isVisible()) return;
            if (next == answers.size()) {
                ADD_FAILURE() << "one dialog more than expected";
                modal->close();
            } else if (answers[next].isFor(*modal)) {
                answers[next++].act(*modal);
            }
        });
    }

    struct Answer {
        std::function<bool(const QWidget&)> isFor;
        std::function<void(QWidget&)> act;
    };

    static constexpr const char* kLine = "03,Gate,2004/02/29 08:15:00,Network close.\n";

    const test::TemporaryFolder folder;
    const QString path = QString::fromStdString(folder.Path().string()) + QLatin1Char('/');
    std::vector<Answer> answers;
    std::size_t next = 0;
};

TEST_F(SaveAs, OffersANameAndTwoFilters) {
    Expect<QFileDialog>([](QFileDialog& dialog) {
        const auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->text(), QStringLiteral("message.csv"));
        const auto* types = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        ASSERT_NE(types, nullptr);
        ASSERT_EQ(types->count(), 2);
        EXPECT_EQ(types->itemText(0), QStringLiteral("CVS Files (*.csv)"));
        EXPECT_EQ(types->itemText(1), QStringLiteral("All Files (*.*)"));
        const auto* files = dialog.findChild<QFileSystemModel*>();
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(files->nameFilters(), QStringList{QStringLiteral("*.csv")});
        dialog.selectNameFilter(dialog.nameFilters().last());
        EXPECT_EQ(files->nameFilters(), QStringList{QStringLiteral("*")});  // a dot or none
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Run();
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(SaveAs, AddsTheExtensionToANameWithoutOne) {
    ExpectFileDialog(path + QStringLiteral("night"));
    Run();
    EXPECT_EQ(test::ReadWholeFile("night.csv"), kLine);
    EXPECT_FALSE(std::filesystem::exists("night"));
}

TEST_F(SaveAs, LeavesAnExtensionThatIsThere) {
    ExpectFileDialog(path + QStringLiteral("n\u00e4chte.txt"));
    Run();
    EXPECT_EQ(test::ReadWholeFile("n\xC3\xA4"
                                  "chte.txt"),
              kLine);
}

TEST_F(SaveAs, AsksBeforeOverwriting) {
    test::WriteWholeFile("old.csv", "old");
    ExpectFileDialog(path + QStringLiteral("old"));
    ExpectQuestion(QMessageBox::No);
    Expect<QFileDialog>([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    Run();
    EXPECT_EQ(test::ReadWholeFile("old.csv"), "old");
    answers.clear();
    ExpectFileDialog(path + QStringLiteral("old"));
    ExpectQuestion(QMessageBox::Yes);
    Run();
    EXPECT_EQ(test::ReadWholeFile("old.csv"), kLine);
}

TEST_F(SaveAs, TellsOfAFileThatCannotBeMade) {
    ExpectFileDialog(path + QStringLiteral("missing/log.csv"));
    ExpectFailure();
    Run();
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(SaveAs, TellsOfAFullDisk) {
    std::filesystem::create_symlink("/dev/full", "full.csv");
    ExpectFileDialog(path + QStringLiteral("full.csv"));
    ExpectQuestion(QMessageBox::Yes);
    ExpectFailure();
    Run();
}

TEST_F(SaveAs, ExportsWhatCameMeanwhile) {
    Expect<QFileDialog>([this](QFileDialog& dialog) {
        log.Clean();
        now.second = 7;
        log.AddLogEntry(&Info(1), "Network error.");
        dialog.selectFile(path + QStringLiteral("late.csv"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    Run();
    EXPECT_EQ(test::ReadWholeFile("late.csv"), "01,,2004/02/29 08:15:07,Network error.\n");
}

}  // namespace
}  // namespace marvolen
