#include "display/time_gate.h"

namespace marvolen {

void TimeGate::Open(std::uint32_t newMinInterval) {
    timeValid = 0;
    lastTime = {};
    minInterval = newMinInterval;
}

void TimeGate::Close() {
    timeValid = 0;
}

bool TimeGate::Pass(const SYSTEMTIME* stamp) {
    if (!stamp) {
        timeValid = 0;
        return true;
    }
    const auto difference = static_cast<std::uint32_t>(DifferenceInMilliseconds(*stamp, lastTime));
    if (lastTime != SYSTEMTIME{} && difference <= minInterval) return false;
    lastTime = *stamp;
    timeValid = 1;
    return true;
}

}  // namespace marvolen
