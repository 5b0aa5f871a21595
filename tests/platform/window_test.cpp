#include "platform/window.h"

#include <QCoreApplication>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace marvolen {
namespace {

class RecordingWindow : public CWnd {
public:
    std::vector<WPARAM> messages;
    std::vector<std::uint32_t> ticks;

protected:
    void OnMessage(std::uint32_t, WPARAM wParam, LPARAM) override { messages.push_back(wParam); }
    void OnTimer(std::uint32_t id) override { ticks.push_back(id); }
};

TEST(Window, PostedMessagesWaitForTheEventLoopAndKeepTheirOrder) {
    RecordingWindow window;
    for (WPARAM k = 0; k < 100; ++k) window.PostMessage(WM_USER, k, 0);
    EXPECT_TRUE(window.messages.empty());
    QCoreApplication::processEvents();
    ASSERT_EQ(window.messages.size(), 100U);
    for (WPARAM k = 0; k < 100; ++k) EXPECT_EQ(window.messages[k], k);
}

TEST(Window, MessagesToAWindowThatHasGoneAreDropped) {
    auto window = std::make_unique<RecordingWindow>();
    window->PostMessage(WM_USER, 1, 0);
    window.reset();
    QCoreApplication::processEvents();
}

TEST(Window, MayGoInTheMiddleOfItsOwnMessage) {
    class Suicidal : public CWnd {
    public:
        explicit Suicidal(bool& goneFlag) : gone(goneFlag) {}
        ~Suicidal() override { gone = true; }
        bool& gone;

    protected:
        void OnMessage(std::uint32_t, WPARAM, LPARAM) override { delete this; }
    };
    bool gone = false;
    auto* window = new Suicidal(gone);
    window->PostMessage(WM_USER, 1, 0);
    window->PostMessage(WM_USER, 2, 0);
    QCoreApplication::processEvents();
    EXPECT_TRUE(gone);
}

TEST(Window, TakesMessagesFromOtherThreads) {
    RecordingWindow window;
    std::thread poster([&] {
        for (WPARAM k = 0; k < 1000; ++k) window.PostMessage(WM_USER, k, 0);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.messages.size() == 1000; }));
    poster.join();
    for (WPARAM k = 0; k < 1000; ++k) ASSERT_EQ(window.messages[k], k);
}

TEST(Window, TimersTickUntilKilled) {
    RecordingWindow window;
    window.SetTimer(3, 1);
    window.SetTimer(17, 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.ticks.size() >= 6; }));
    window.KillTimer(3);
    window.KillTimer(99);
    window.ticks.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.ticks.size() >= 3; }));
    for (const std::uint32_t id : window.ticks) EXPECT_EQ(id, 17U);
}

TEST(Window, SettingARunningTimerReplacesIt) {
    RecordingWindow window;
    window.SetTimer(5, 1);
    window.SetTimer(5, 600000);
    window.SetTimer(6, 5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.ticks.size() >= 3; }));
    for (const std::uint32_t id : window.ticks) EXPECT_EQ(id, 6U);
}

}  // namespace
}  // namespace marvolen
