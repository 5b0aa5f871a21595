#pragma once

// PlaybackPositions: where playback stands in a file of N records, and the range marked for export.
//
// Positions run from 0 to N - 1. Position p stands for record p + 1, counted from 0 at the oldest;
// the last one has nothing new to show. Each operation moves the position and returns what the
// player is to do for it; the dialog's slider shows the result.

#include <algorithm>
#include <cstdint>

namespace marvolen {

// What the player is asked for.
struct PlaybackStep {
    enum class Kind {
        kNone,
        kShow,     // PlaybackSource::ShowPosition(position)
        kForward,  // PlaybackSource::StepForward()
        kBack      // PlaybackSource::StepBack()
    };

    bool operator==(const PlaybackStep&) const = default;

    Kind kind = Kind::kNone;
    std::int32_t position = 0;  // for kShow
};

// The two ends are marked one by one: start may lie beyond end, and then nothing is selected.
struct PlaybackSelection {
    bool operator==(const PlaybackSelection&) const = default;

    std::int32_t start = 0;
    std::int32_t end = 0;
};

class PlaybackPositions {
public:
    // No file: the position goes to 0, everything else stays until the next Open.
    void Close() { position = kMinimum; }

    // A file of recordCount records: positions 0 to recordCount - 1, all of them selected.
    void Open(std::uint32_t recordCount);

    std::int32_t Minimum() const { return kMinimum; }
    std::int32_t Maximum() const { return maximum; }
    std::int32_t Position() const { return position; }
    PlaybackSelection Selection() const { return selection; }

    // Moves to a position, or to the nearest one there is.
    void SetPosition(std::int32_t newPosition) {
        position = std::max(kMinimum, std::min(newPosition, maximum));  // there may be none
    }

    // A tick of the play timer at a speed of so many records. At the end every tick shows the last
    // position again.
    PlaybackStep Tick(std::uint32_t speed);
    PlaybackStep Stop();
    // The user has moved the slider.
    PlaybackStep Scroll(std::int32_t newPosition);
    PlaybackStep Next();
    // Nothing at position 1; at position 0 the player steps back and the position stays.
    PlaybackStep Prev();

    // Select from, or up to, the position.
    void MarkStart() { selection.start = position; }
    void MarkEnd() { selection.end = position; }

private:
    static constexpr std::int32_t kMinimum = 0;

    PlaybackStep ShowAt(std::int32_t newPosition);

    std::int32_t maximum = 0;
    std::int32_t position = 0;
    PlaybackSelection selection;
};

}  // namespace marvolen
