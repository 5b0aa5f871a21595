#include "platform/termination.h"

#include "tests/support/event_loop.h"

#include <QTest>

#include <gtest/gtest.h>
#include <signal.h>

namespace marvolen {
namespace {

TEST(Termination, SignalsReachTheEventLoop) {
    int calls = 0;
    const TerminationWatcher watcher([&] { ++calls; });
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const int before = calls;
        raise(signal);
        EXPECT_EQ(calls, before) << "called from within the signal";
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls == before + 1; })) << signal;
    }
}

TEST(Termination, GivesSignalsTheirFormerMeaningBack) {
    struct sigaction before {};
    sigaction(SIGHUP, nullptr, &before);
    {
        const TerminationWatcher watcher([] {});
    }
    struct sigaction after {};
    sigaction(SIGHUP, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}

TEST(Termination, IgnoredSignalsStayIgnored) {
    const auto former = signal(SIGHUP, SIG_IGN);
    int calls = 0;
    {
        const TerminationWatcher watcher([&] { ++calls; });
        raise(SIGHUP);
        EXPECT_TRUE(test::ComesToRest());
        EXPECT_EQ(calls, 0);
        raise(SIGTERM);
        EXPECT_TRUE(test::WaitUntil([&] { return calls == 1; })) << "the others are watched";
    }
    EXPECT_EQ(signal(SIGHUP, former), SIG_IGN);
}

}  // namespace
}  // namespace marvolen
