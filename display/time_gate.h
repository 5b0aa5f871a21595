#pragma once

// TimeGate: which pictures' time stamps a pane shows.

#include "platform/system_time.h"

#include <cstdint>

namespace marvolen {

class TimeGate {
public:
    // No time yet; stamps are taken that exceed the one before by more than newMinInterval
    // milliseconds.
    void Open(std::uint32_t newMinInterval);

    // The time is not to be shown any more.
    void Close();

    // A picture with this stamp, or null for none, has come. Takes the stamp when it exceeds the
    // last one taken by more than the interval. The difference compares as an unsigned 32-bit
    // number of milliseconds, so a clock set back is followed at once. The first stamp after Open
    // is always taken; a picture without a stamp makes the time invalid. Returns whether the
    // picture is one to show: it was taken, or had no stamp.
    bool Pass(const SYSTEMTIME* stamp);

    // The stamp last taken, or null when the time isn't to be shown.
    const SYSTEMTIME* Time() const { return timeValid != 0 ? &lastTime : nullptr; }

private:
    std::int32_t timeValid = 0;
    SYSTEMTIME lastTime{};  // all zero: none since Open
    std::uint32_t minInterval = 0;
};

}  // namespace marvolen
