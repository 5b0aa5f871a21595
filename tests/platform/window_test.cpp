#include "platform/window.h"

#include "tests/support/event_loop.h"

#include <gtest/gtest.h>
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

TEST(Window, MessagesOfAnyThreadArriveLaterInTheirOrder) {
    RecordingWindow window;
    window.PostMessage(WM_USER, 0, 0);
    EXPECT_TRUE(window.messages.empty());
    std::thread poster([&] {
        for (WPARAM k = 1; k < 1000; ++k) window.PostMessage(WM_USER, k, 0);
    });
    EXPECT_TRUE(test::WaitUntil([&] { return window.messages.size() == 1000; }));
    poster.join();
    for (WPARAM k = 0; k < 1000; ++k) ASSERT_EQ(window.messages[k], k);
}

TEST(Window, TimersTickUntilTheyAreKilledOrReplaced) {
    RecordingWindow window;
    for (const std::uint32_t id : {3U, 5U, 17U}) window.SetTimer(id, 1);
    EXPECT_TRUE(test::WaitUntil([&] { return window.ticks.size() >= 6; }));
    window.KillTimer(3);
    window.KillTimer(99);
    window.SetTimer(5, 600000);
    window.ticks.clear();
    EXPECT_TRUE(test::WaitUntil([&] { return window.ticks.size() >= 3; }));
    for (const std::uint32_t id : window.ticks) EXPECT_EQ(id, 17U);
}

}  // namespace
}  // namespace marvolen
