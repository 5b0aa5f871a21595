#include "platform/thread_priority.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <utility>

namespace marvolen {
namespace {

using Schedule = std::pair<int, int>;  // policy, nice value

Schedule Current() {
    return {sched_getscheduler(0), getpriority(PRIO_PROCESS, 0)};
}

TEST(ThreadPriority, EachReplacesTheOneBeforeForTheCallingThreadOnly) {
    const Schedule ours = Current();
    std::thread([] {
        SetThreadPriority(ThreadPriority::Idle);
        EXPECT_EQ(Current().first, SCHED_IDLE);
        if (setpriority(PRIO_PROCESS, 0, -20) != 0) return;  // this user may not raise priorities
        SetThreadPriority(ThreadPriority::Normal);
        EXPECT_EQ(Current(), Schedule(SCHED_OTHER, 0));
        SetThreadPriority(ThreadPriority::Idle);
        SetThreadPriority(ThreadPriority::TimeCritical);
        EXPECT_EQ(Current(), Schedule(SCHED_OTHER, -20));
    }).join();
    EXPECT_EQ(Current(), ours);
}

}  // namespace
}  // namespace marvolen
