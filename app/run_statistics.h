#pragma once

// RunStatistics: what the running program does, a line a second, for benchmarks and long runs. Off
// unless the environment variable MARVOLEN_STATISTICS names a file, which is written anew:
// comma-separated values under a line of names (docs/performance.md tells them). Interface thread
// only.

#include <QTimer>

#include <chrono>
#include <fstream>
#include <memory>
#include <string>

namespace marvolen {

class CMarvolenDlg;

class RunStatistics {
public:
    // For the file that the environment names; null when it names none, or one that can't be
    // written, which standard error is told. The window is borrowed for the object's life.
    static std::unique_ptr<RunStatistics> FromEnvironment(CMarvolenDlg& window);

    // Writes the names, and from then on a line a second.
    RunStatistics(CMarvolenDlg& itsWindow, const std::string& path);

    // Writes a line now. Does nothing until the window has its panel.
    void WriteLine();

private:
    using Clock = std::chrono::steady_clock;

    void Beat();

    CMarvolenDlg& window;
    std::ofstream file;
    const Clock::time_point start = Clock::now();
    Clock::time_point lastBeat = start;
    Clock::duration longestGap{};  // between two beats since the last line
    QTimer heart;
    QTimer lineTimer;
};

}  // namespace marvolen
