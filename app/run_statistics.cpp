#include "app/run_statistics.h"

#include "app/marvolen_dlg.h"
#include "platform/list_control.h"
#include "res/resource_ids.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace marvolen {
namespace {

using namespace std::chrono_literals;

// Seldom enough to cost next to nothing, often enough to see what a user would feel.
constexpr std::chrono::milliseconds kBeat = 5ms;

constexpr const char* kChannelCounts[] = {"received", "due", "recorded", "shown"};

}  // namespace

std::unique_ptr<RunStatistics> RunStatistics::FromEnvironment(CMarvolenDlg& window) {
    const char* const path = std::getenv("MARVOLEN_STATISTICS");
    if (!path || !*path) return nullptr;
    auto statistics = std::make_unique<RunStatistics>(window, path);
    if (statistics->file) return statistics;
    std::fprintf(stderr, "Statistics can't be written to %s\n", path);
    return nullptr;
}

RunStatistics::RunStatistics(CMarvolenDlg& itsWindow, const std::string& path)
    : window(itsWindow), file(path) {
    file << "ms,longest_gap_ms,log_rows";
    for (const char* count : kChannelCounts) {
        for (int k = 1; k <= kChannelCount; ++k) file << ',' << count << k;
    }
    file << std::endl;
    heart.setTimerType(Qt::PreciseTimer);
    heart.callOnTimeout(&heart, [this] { Beat(); });
    heart.start(kBeat);
    lineTimer.setTimerType(Qt::PreciseTimer);
    lineTimer.callOnTimeout(&lineTimer, [this] { WriteLine(); });
    lineTimer.start(1s);
}

void RunStatistics::Beat() {
    const Clock::time_point now = Clock::now();
    longestGap = std::max(longestGap, now - std::exchange(lastBeat, now));
}

void RunStatistics::WriteLine() {
    auto* const log = window.findChild<CListCtrl*>(QString::number(IDC_LOG_LIST));
    if (!log) return;
    Beat();
    const auto milliseconds = [](Clock::duration duration) {
        return std::chrono::duration<double, std::milli>(duration).count();
    };
    file << static_cast<std::int64_t>(milliseconds(lastBeat - start)) << ','
         << milliseconds(std::exchange(longestGap, {})) << ',' << log->GetItemCount();
    const auto eachRecorder = [this](std::uint64_t FrameCounts::*count) {
        for (int k = 0; k < kChannelCount; ++k) {
            file << ',' << window.Channels().Recorder(k).Counts().*count;
        }
    };
    eachRecorder(&FrameCounts::received);
    eachRecorder(&FrameCounts::due);
    eachRecorder(&FrameCounts::recorded);
    for (int k = 0; k < kChannelCount; ++k) file << ',' << window.Pane(k).ShownCount();
    file << std::endl;
}

}  // namespace marvolen
