#include "app/marvolen_app.h"

#include "app/marvolen_dlg.h"
#include "config/settings_file.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "tests/app/cameras.h"

#include <QApplication>
#include <QMessageBox>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <cstring>
#include <functional>
#include <sys/resource.h>
#include <thread>

namespace marvolen {
namespace {

class WithoutSockets final : public CMarvolenApp {
protected:
    bool InitSockets() override { return false; }
};

class MarvolenApp : public ::testing::Test {
protected:
    ~MarvolenApp() override { g_channelInfo = FactoryChannelTable(); }

    // Calls act(window) once, when the first window shows.
    template <typename Act>
    void WithTheWindow(Act act) {
        QObject::connect(&poll, &QTimer::timeout, &poll, [this, act] {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (!window->isVisible()) continue;
                poll.stop();
                return act(window);
            }
        });
        poll.start(10);
    }

    const test::TemporaryFolder folder;
    QTimer poll;
};

TEST_F(MarvolenApp, WithoutSocketsSaysSoAndStillWritesTheSettings) {
    WithTheWindow([](QWidget* window) {
        auto* box = qobject_cast<QMessageBox*>(window);
        EXPECT_TRUE(box && box->text() == QStringLiteral("Windows sockets ?????"));
        window->close();
    });
    EXPECT_EQ(WithoutSockets().Run(), 0);
    EXPECT_EQ(std::filesystem::file_size(kSettingsFileName), sizeof(ChannelTable));
}

// However it ends, the settings are written as they were read, byte for byte.
TEST_F(MarvolenApp, EveryEndWritesTheSettings) {
    const auto key = [](int id, Qt::Key pressed) {
        return [id, pressed](QWidget* window) {
            QTest::keyClick(window->findChild<QWidget*>(QString::number(id)), pressed);
        };
    };
    const std::pair<const char*, std::function<void(QWidget*)>> ends[] = {
        {"close box", [](QWidget* window) { window->close(); }},
        {"Escape", [](QWidget* window) { QTest::keyClick(window, Qt::Key_Escape); }},
        {"Escape in the panel", key(IDC_LOG_LIST, Qt::Key_Escape)},
        {"Exit", key(IDC_EXIT, Qt::Key_Space)},
        {"SIGTERM", [](QWidget*) { raise(SIGTERM); }},
        {"SIGINT", [](QWidget*) { raise(SIGINT); }},
        {"SIGHUP", [](QWidget*) { raise(SIGHUP); }}};
    ChannelTable stored = FactoryChannelTable();
    std::memset(stored[7].netName, 'x', sizeof stored[7].netName);  // no NUL
    stored[5].channelIndex = 77;
    stored[6].sizeIndex = -3;
    stored[6].rateIndex = 1 << 30;
    for (const auto& [name, end] : ends) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(WriteSettingsFile(kSettingsFileName, stored));
        const std::string before = test::ReadWholeFile(kSettingsFileName);
        WithTheWindow(end);
        EXPECT_EQ(CMarvolenApp().Run(), 0);
        EXPECT_EQ(test::ReadWholeFile(kSettingsFileName), before);
    }
}

bool MayRaisePriority() {
    bool permitted = false;
    std::thread([&] { permitted = setpriority(PRIO_PROCESS, 0, -20) == 0; }).join();
    return permitted;
}

// The program itself, as a user starts it.
class Program : public test::Cameras {};

TEST_F(Program, WatchesAndEndsInOrder) {
    SaveSettings();
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/marvolen"), {});
    ASSERT_TRUE(program.waitForStarted());
    for (int k = 0; k < kChannelCount; ++k) EXPECT_TRUE(server.WaitForSent(k, 3)) << k;
    const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(program.processId()));
    EXPECT_TRUE(nice == -20 || !MayRaisePriority()) << "the interface thread's is " << nice;
    std::filesystem::remove(kSettingsFileName);
    program.terminate();
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_TRUE(program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0);
    EXPECT_EQ(std::filesystem::file_size(kSettingsFileName), sizeof(ChannelTable));
}

}  // namespace
}  // namespace marvolen
