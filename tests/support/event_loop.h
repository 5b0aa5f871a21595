#pragma once

// Running the event loop from a test.

#include "tests/support/loopback.h"

#include <QAbstractEventDispatcher>
#include <QTest>

namespace marvolen::test {

// Runs the event loop until the condition holds; false when it doesn't for kPatience.
template <typename Condition>
bool WaitUntil(Condition condition) {
    return QTest::qWaitFor(condition, kPatience);
}

// Whether the event loop comes to rest and then finds nothing to do, turn after turn. A descriptor
// that is ready and watched but not dealt with shows here.
inline bool ComesToRest() {
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    const auto idle = [dispatcher] { return !dispatcher->processEvents(QEventLoop::AllEvents); };
    if (!WaitUntil(idle)) return false;
    for (int turn = 0; turn < 100; ++turn) {
        if (!idle()) return false;
    }
    return true;
}

}  // namespace marvolen::test
