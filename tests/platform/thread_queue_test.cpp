#include "platform/thread_queue.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace marvolen {
namespace {

TEST(ThreadQueue, DeliversInOrderAcrossThreads) {
    ThreadQueue queue;
    std::vector<WPARAM> taken;
    std::thread reader([&] {
        ThreadMessage message;
        while (queue.Wait(message)) taken.push_back(message.wParam);
    });
    for (WPARAM k = 0; k < 10000;) {
        if (queue.Post({WM_PANEPICTURE, k, 0})) {
            ++k;
        } else {
            std::this_thread::yield();
        }
    }
    queue.Quit();
    reader.join();
    ASSERT_EQ(taken.size(), 10000U);
    for (WPARAM k = 0; k < taken.size(); ++k) ASSERT_EQ(taken[k], k);
}

TEST(ThreadQueue, QuitLetsWaitingMessagesThroughAndRefusesNewOnes) {
    ThreadQueue queue;
    ASSERT_TRUE(queue.Post({WM_PANEPICTURE, 1, 2}));
    queue.Quit();
    EXPECT_FALSE(queue.Post({WM_PANEPICTURE, 3, 4}));
    ThreadMessage message;
    ASSERT_TRUE(queue.Wait(message));
    EXPECT_EQ(message.lParam, 2);
    EXPECT_FALSE(queue.Wait(message));
}

TEST(ThreadQueue, RefusesWhatDoesNotFit) {
    ThreadQueue queue;
    for (std::size_t k = 0; k < ThreadQueue::kCapacity; ++k) ASSERT_TRUE(queue.Post({}));
    EXPECT_FALSE(queue.Post({}));
    ThreadMessage message;
    EXPECT_TRUE(queue.Wait(message));
    EXPECT_TRUE(queue.Post({}));
}

}  // namespace
}  // namespace marvolen
