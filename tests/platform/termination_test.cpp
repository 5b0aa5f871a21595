#include "platform/termination.h"

#include "tests/support/event_loop.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace marvolen {
namespace {

TEST(Termination, SignalsReachTheEventLoopUnlessTheyWereIgnored) {
    const auto former = signal(SIGHUP, SIG_IGN);
    int calls = 0;
    {
        const TerminationWatcher watcher([&] { ++calls; });
        raise(SIGHUP);
        EXPECT_TRUE(test::ComesToRest());
        EXPECT_EQ(calls, 0);
        for (const int one : {SIGTERM, SIGINT}) {
            const int before = calls;
            raise(one);
            EXPECT_EQ(calls, before) << "called from within the signal";
            EXPECT_TRUE(test::WaitUntil([&] { return calls == before + 1; })) << one;
        }
    }
    EXPECT_EQ(signal(SIGHUP, former), SIG_IGN);
    EXPECT_EQ(signal(SIGTERM, SIG_DFL), SIG_DFL) << "its former meaning is back";
}

}  // namespace
}  // namespace marvolen
