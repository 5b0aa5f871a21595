#include "platform/thread_priority.h"

#include <functional>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace marvolen {
namespace {

struct Schedule {
    int policy;
    int nice;
    bool operator==(const Schedule&) const = default;
};

Schedule Current() {
    return {sched_getscheduler(0), getpriority(PRIO_PROCESS, 0)};
}

// What a thread of its own runs at after each of the priorities.
std::vector<Schedule> SchedulesAt(
    const std::vector<ThreadPriority>& priorities, const std::function<void()>& before = [] {}) {
    std::vector<Schedule> schedules;
    std::thread([&] {
        before();
        for (const ThreadPriority priority : priorities) {
            SetThreadPriority(priority);
            schedules.push_back(Current());
        }
    }).join();
    return schedules;
}

bool MayRaisePriorities() {
    bool may = false;
    std::thread([&] { may = setpriority(PRIO_PROCESS, 0, -20) == 0; }).join();
    return may;
}

// Takes the calling thread's right to raise its priority.
void GiveUpRights() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    ASSERT_EQ(syscall(SYS_capset, &header, none), 0);
}

// While it lives, only a capability permits raising a priority.
class NiceLimit {
public:
    NiceLimit() {
        getrlimit(RLIMIT_NICE, &former);
        const rlimit none{0, former.rlim_max};
        setrlimit(RLIMIT_NICE, &none);
    }
    ~NiceLimit() { setrlimit(RLIMIT_NICE, &former); }
    NiceLimit(const NiceLimit&) = delete;
    NiceLimit& operator=(const NiceLimit&) = delete;

private:
    rlimit former{};
};

TEST(ThreadPriority, IdleIsTheSystemsIdlePolicyForTheCallingThreadOnly) {
    const Schedule ours = Current();
    EXPECT_EQ(SchedulesAt({ThreadPriority::Idle}).at(0).policy, SCHED_IDLE);
    EXPECT_EQ(Current(), ours);
}

TEST(ThreadPriority, EachReplacesTheOneBefore) {
    if (!MayRaisePriorities()) GTEST_SKIP() << "this user may not raise priorities";
    const Schedule normal{SCHED_OTHER, 0}, critical{SCHED_OTHER, -20};
    const auto schedules =
        SchedulesAt({ThreadPriority::TimeCritical, ThreadPriority::Normal, ThreadPriority::Idle,
                     ThreadPriority::Normal, ThreadPriority::Idle, ThreadPriority::TimeCritical});
    EXPECT_EQ(schedules[0], critical);
    EXPECT_EQ(schedules[1], normal);
    EXPECT_EQ(schedules[2].policy, SCHED_IDLE);
    EXPECT_EQ(schedules[3], normal);
    EXPECT_EQ(schedules[5], critical);
}

TEST(ThreadPriority, WhatIsRefusedLeavesTheThreadAsItWas) {
    const NiceLimit limit;
    const Schedule ours = Current();
    const auto schedules = SchedulesAt(
        {ThreadPriority::TimeCritical, ThreadPriority::Idle, ThreadPriority::TimeCritical},
        GiveUpRights);
    EXPECT_EQ(schedules[0], ours);
    EXPECT_EQ(schedules[1].policy, SCHED_IDLE) << "that is always permitted";
    EXPECT_EQ(schedules[2], schedules[1]);
}

}  // namespace
}  // namespace marvolen
