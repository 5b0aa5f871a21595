#include "app/marvolen_app.h"

#include "config/settings_file.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <utility>

namespace marvolen {
namespace {

class WithoutSockets final : public CMarvolenApp {
protected:
    bool InitSockets() override { return false; }
};

class MarvolenApp : public ::testing::Test {
protected:
    MarvolenApp() { g_channelInfo = FactoryChannelTable(); }
    ~MarvolenApp() override { g_channelInfo = FactoryChannelTable(); }

    // Calls act(window) with the first window that shows, again and again until there is none.
    template <typename Act>
    void WithTheWindow(Act act) {
        QObject::connect(&poll, &QTimer::timeout, &poll, [act] {
            QWidget* window = QApplication::activeModalWidget();
            if (window && window->isVisible()) act(window);
        });
        poll.start(10);
    }

    const test::TemporaryFolder folder;
    QTimer poll;
};

TEST_F(MarvolenApp, WithoutSocketsSaysSoAndStillWritesTheSettings) {
    ChannelTable stored = FactoryChannelTable();
    SetFieldText(stored[2].netName, "Gate");
    ASSERT_TRUE(WriteSettingsFile("stored.bin", stored));
    std::filesystem::copy_file("stored.bin", kSettingsFileName);

    QString shown;
    WithTheWindow([&shown](QWidget* window) {
        auto* box = qobject_cast<QMessageBox*>(window);
        ASSERT_TRUE(box) << "another window than the message box";
        shown = box->text();
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
        box->accept();
    });
    WithoutSockets app;
    EXPECT_EQ(app.Run(), 0);
    EXPECT_EQ(shown, QStringLiteral("Windows sockets ?????"));
    EXPECT_EQ(FieldText(g_channelInfo[2].netName), "Gate");
    EXPECT_EQ(test::ReadWholeFile(kSettingsFileName), test::ReadWholeFile("stored.bin"));
}

TEST_F(MarvolenApp, ARunWithoutChangesWritesTheSameBytesBack) {
    ChannelTable stored = FactoryChannelTable();
    std::memset(stored[7].netName, 'x', sizeof stored[7].netName);  // no NUL
    stored[5].channelIndex = 77;
    stored[6].sizeIndex = -3;
    stored[6].rateIndex = 1 << 30;
    ASSERT_TRUE(WriteSettingsFile(kSettingsFileName, stored));
    const std::string before = test::ReadWholeFile(kSettingsFileName);
    WithTheWindow([](QWidget* window) { window->close(); });
    CMarvolenApp app;
    EXPECT_EQ(app.Run(), 0);
    EXPECT_EQ(test::ReadWholeFile(kSettingsFileName), before);
}

TEST_F(MarvolenApp, ATerminationSignalEndsItAsAUserWould) {
    bool raised = false;
    WithTheWindow([&raised](QWidget*) {
        if (!std::exchange(raised, true)) raise(SIGTERM);
    });
    CMarvolenApp app;
    EXPECT_EQ(app.Run(), 0);
    EXPECT_EQ(std::filesystem::file_size(kSettingsFileName), sizeof(ChannelTable));
}

TEST_F(MarvolenApp, TheFirstRunWritesTheFactorySettings) {
    WithTheWindow([](QWidget* window) { window->close(); });
    CMarvolenApp app;
    EXPECT_EQ(app.Run(), 0);
    ChannelTable written{};
    ASSERT_TRUE(ReadSettingsFile(kSettingsFileName, written));
    const ChannelTable factory = FactoryChannelTable();
    EXPECT_EQ(std::memcmp(&written, &factory, sizeof written), 0);
}

}  // namespace
}  // namespace marvolen
