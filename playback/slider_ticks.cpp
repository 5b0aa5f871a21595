#include "playback/slider_ticks.h"

#include <algorithm>

namespace marvolen {

std::int64_t TickInterval(std::int32_t maximum, int pixels) {
    const std::int64_t room = std::max(pixels, 1);
    for (std::int64_t decade = 1;; decade *= 10) {
        for (const std::int64_t step : {decade, 2 * decade, 5 * decade}) {
            if (step >= maximum || step * room >= kTickDistance * std::int64_t{maximum}) {
                return step;
            }
        }
    }
}

}  // namespace marvolen
