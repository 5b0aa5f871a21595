#include "playback/playback_positions.h"

namespace marvolen {

void PlaybackPositions::Open(std::uint32_t recordCount) {
    maximum = static_cast<std::int32_t>(recordCount - 1);
    selection = {kMinimum, maximum};
    SetPosition(position);
}

PlaybackStep PlaybackPositions::ShowAt(std::int32_t newPosition) {
    SetPosition(newPosition);
    return {PlaybackStep::Kind::kShow, position};
}

PlaybackStep PlaybackPositions::Tick(std::uint32_t speed) {
    const auto wanted = static_cast<std::int32_t>(static_cast<std::uint32_t>(position) + speed);
    return ShowAt(std::min(wanted, maximum));
}

PlaybackStep PlaybackPositions::Stop() {
    return ShowAt(kMinimum);
}

PlaybackStep PlaybackPositions::Scroll(std::int32_t newPosition) {
    return ShowAt(newPosition);
}

PlaybackStep PlaybackPositions::Next() {
    const std::uint32_t wanted = static_cast<std::uint32_t>(position) + 1;
    if (wanted > static_cast<std::uint32_t>(maximum)) return {};
    SetPosition(static_cast<std::int32_t>(wanted));
    return {PlaybackStep::Kind::kForward};
}

// Unsigned: one before 0 is the largest number there is, so that position 0 passes the test which
// position 1 doesn't.
PlaybackStep PlaybackPositions::Prev() {
    const std::uint32_t wanted = static_cast<std::uint32_t>(position) - 1;
    if (wanted <= static_cast<std::uint32_t>(kMinimum)) return {};
    SetPosition(static_cast<std::int32_t>(wanted));
    return {PlaybackStep::Kind::kBack};
}

}  // namespace marvolen
