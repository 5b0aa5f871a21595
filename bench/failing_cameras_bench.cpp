// How evenly the interface thread runs while all cameras fail, and what that leaves behind.
//
//   failing_cameras_bench [seconds per fault]      without a screen: QT_QPA_PLATFORM=offscreen
//
// The main window watches and records sixteen cameras of 704 x 480 in a temporary folder. One fault
// after the other strikes all of them at once while a timer of 2 ms beats on the interface thread.
// A line a fault tells the longest gap between two beats, and memory, threads and descriptors at
// its end. The last line tells how long the window took to end.

#include "app/marvolen_dlg.h"
#include "bench/photograph_camera.h"
#include "platform/text_field.h"
#include "tools/camera_server/camera_server.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point then) {
    return std::chrono::duration<double, std::milli>(Clock::now() - then).count();
}

long Entries(const char* folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

void FillChannelTable(const CameraServer& server) {
    g_channelInfo = FactoryChannelTable();
    for (int k = 0; k < kChannelCount; ++k) {
        ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
        SetFieldText(info.host, "localhost");
        SetFieldText(info.port, std::to_string(server.Port(k)));
        SetFieldText(info.recordPath, "ring" + std::to_string(k) + ".dbt");
        info.maxSizeMB = 20;
    }
}

void PrintLine(const char* name, double longestGap) {
    std::printf("%-16s %8.1f ms %8.1f MB %4ld threads %4ld descriptors\n", name, longestGap,
                bench::ResidentMegabytes(), Entries("/proc/self/task"), Entries("/proc/self/fd"));
    std::fflush(stdout);
}

void Run(std::chrono::seconds perFault) {
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    CameraServer server({.checkCredentials = false, .keepSent = false},
                        std::make_shared<bench::PhotographCamera>());
    if (!server.Start()) {
        std::fprintf(stderr, "failing_cameras_bench: %s\n", server.Error().c_str());
        std::exit(1);
    }
    FillChannelTable(server);
    PrintLine("before", 0);

    auto window = std::make_unique<CMarvolenDlg>();
    window->CreateModeless();
    for (int k = 0; k < kChannelCount; ++k) window->Channels().SetRecording(k, true);

    double longestGap = 0;
    Clock::time_point lastBeat = Clock::now();
    QTimer heart;
    heart.setTimerType(Qt::PreciseTimer);
    heart.callOnTimeout(&heart, [&] {
        longestGap = std::max(longestGap, MillisecondsSince(lastBeat));
        lastBeat = Clock::now();
    });
    heart.start(2);
    for (const char* name : {"none", "refuse", "silent", "close", "close-after:1", "stall-after:20",
                             "trickle", "garbage", "no-stamp:1", "oversize:1", "truncate:1",
                             "bit-flip:1", "content-type", "none"}) {
        longestGap = 0;
        lastBeat = Clock::now();
        for (int k = 0; k < kChannelCount; ++k) {
            server.SetFault(k, *ParseFault(name));
            server.Drop(k);
        }
        QEventLoop loop;
        QTimer::singleShot(perFault, &loop, &QEventLoop::quit);
        loop.exec();
        PrintLine(name, longestGap);
    }
    heart.stop();
    const Clock::time_point end = Clock::now();
    window->EndDialog(0);
    window.reset();
    const double took = MillisecondsSince(end);
    server.Stop();
    PrintLine("after", 0);
    std::printf("the end took %.1f ms\n", took);
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    QApplication toolkit(argc, argv);
    marvolen::Run(std::chrono::seconds(argc > 1 ? std::atoi(argv[1]) : 10));
}
