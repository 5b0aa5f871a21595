#include "platform/clipboard.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace marvolen {
namespace {

constexpr int kPatience = 20000;  // milliseconds until a test gives up waiting

// Another program: this one, run with "own TEXT". It says when it owns the clipboard.
class Owner {
public:
    explicit Owner(const QString& text) {
        program.start(QCoreApplication::applicationFilePath(), {QStringLiteral("own"), text});
        EXPECT_TRUE(program.waitForReadyRead(kPatience));
    }
    ~Owner() {
        program.kill();
        program.waitForFinished(kPatience);
    }
    void Stop() const {
        kill(Id(), SIGSTOP);
        siginfo_t stopped{};
        waitid(P_PID, static_cast<id_t>(Id()), &stopped, WSTOPPED | WNOWAIT);
    }
    void GoOn() const { kill(Id(), SIGCONT); }

private:
    pid_t Id() const { return static_cast<pid_t>(program.processId()); }
    QProcess program;
};

TEST(Clipboard, TellsTextNoTextAndAnOwnerThatDoesNotAnswer) {
    EXPECT_EQ(WithCarriageReturns("\na\nb\r\n\n\r\r\nc"), "\r\na\r\nb\r\n\r\n\r\r\nc");
    std::string text;
    SetClipboardText(QStringLiteral("ours\nas well"));
    EXPECT_EQ(GetClipboardText(text), ClipboardRead::Text);
    EXPECT_EQ(text, "ours\r\nas well");
    {
        const Owner other(QStringLiteral("IPAddress:10.1.2.3\nü"));
        EXPECT_EQ(GetClipboardText(text), ClipboardRead::Text);
        EXPECT_EQ(text, "IPAddress:10.1.2.3\r\nü");

        other.Stop();
        int ticks = 0;
        QTimer timer;
        timer.callOnTimeout([&] { ++ticks; });
        timer.start(1);
        EXPECT_EQ(GetClipboardText(text, 100), ClipboardRead::CannotOpen);
        EXPECT_EQ(text, "");
        EXPECT_GT(ticks, 0) << "the event loop stood still";
        other.GoOn();
        EXPECT_EQ(GetClipboardText(text), ClipboardRead::Text);
    }
    // The window system may take a moment to notice that the owner has gone.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return GetClipboardText(text, 100) == ClipboardRead::NoText; }, kPatience));
}

// Owns the clipboard until it is killed.
int Own(const QString& text) {
    SetClipboardText(text);
    QCoreApplication::processEvents();
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

int RunTests() {
    QProcess display;
    display.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                           QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    if (!display.waitForReadyRead(kPatience)) return 1;
    qputenv("DISPLAY", ":" + display.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    int result = 1;
    {
        int argc = 1;
        char name[] = "clipboard_test";
        char* argv[] = {name, nullptr};
        const QGuiApplication application(argc, argv);
        result = RUN_ALL_TESTS();
    }
    display.terminate();
    display.waitForFinished(kPatience);
    return result;
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "own") {
        const QGuiApplication application(argc, argv);
        return marvolen::Own(QString::fromUtf8(argv[2]));
    }
    ::testing::InitGoogleTest(&argc, argv);
    return GTEST_FLAG_GET(list_tests) ? RUN_ALL_TESTS() : marvolen::RunTests();
}
