// The message log's list with a hundred thousand rows: what its user waits for.

#include "app/message_log.h"

#include <QApplication>
#include <QImage>
#include <QScrollBar>

#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <malloc.h>
#include <string>

namespace marvolen {
namespace {

constexpr int kRows = 100'000;

// A shown list of the log's size in the panel, filled as a long night of failing cameras does.
class LogList {
public:
    LogList() {
        list.resize(210, 180);
        list.show();
        QCoreApplication::processEvents();
    }

    void Fill() {
        constexpr std::array<const char*, 4> kEvents = {"Network connect.", "Network close.",
                                                        "Network error.", "Unknown Error."};
        std::uint32_t random = 1;
        for (int row = 0; row < kRows; ++row) {
            random = random * 1664525U + 1013904223U;
            ChannelInfo& info = g_channelInfo[random >> 28];
            std::snprintf(info.netName, sizeof info.netName, "Gate %u", random >> 20 & 0xFFU);
            now.hour = static_cast<std::uint16_t>(row / 3600 % 24);
            now.minute = static_cast<std::uint16_t>(row / 60 % 60);
            now.second = static_cast<std::uint16_t>(row % 60);
            log.AddLogEntry(&info, kEvents[random >> 18 & 3U]);
        }
        Update();
    }

    // Everything that is due after a change: layout, then painting what is in sight.
    void Update() {
        QCoreApplication::processEvents();
        benchmark::DoNotOptimize(list.grab());
    }

    CSortListCtrl list;
    SYSTEMTIME now{2004, 2, 0, 29, 0, 0, 0, 0};
    MessageLog log{list, [this] { return now; }};
};

void FillAndClean(benchmark::State& state) {
    LogList fixture;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks;
        fixture.Fill();
        state.PauseTiming();
        bytes = mallinfo2().uordblks - before;
        fixture.log.Clean();
        fixture.Update();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
    state.counters["bytes_a_row"] = double(bytes) / kRows;
}
BENCHMARK(FillAndClean)->Name("fill")->Unit(benchmark::kMillisecond);

void Clean(benchmark::State& state) {
    LogList fixture;
    for (auto _ : state) {
        state.PauseTiming();
        fixture.Fill();
        state.ResumeTiming();
        fixture.log.Clean();
        fixture.Update();
    }
}
BENCHMARK(Clean)->Name("clean")->Unit(benchmark::kMillisecond);

void AddOne(benchmark::State& state) {
    LogList fixture;
    fixture.Fill();
    for (auto _ : state) {
        fixture.log.AddLogEntry(g_channelInfo.data(), "Network close.");
        fixture.Update();
    }
}
BENCHMARK(AddOne)->Name("add one row and show it")->Unit(benchmark::kMillisecond);

void Scroll(benchmark::State& state) {
    LogList fixture;
    fixture.Fill();
    int position = 0;
    for (auto _ : state) {
        position = (position + 997) % kRows;
        fixture.list.verticalScrollBar()->setValue(position);
        fixture.Update();
    }
}
BENCHMARK(Scroll)->Name("scroll")->Unit(benchmark::kMillisecond);

// Argument: the column. Each round sorts the other way than the one before.
void Sort(benchmark::State& state) {
    LogList fixture;
    fixture.Fill();
    bool ascending = true;
    for (auto _ : state) {
        fixture.list.SortByColumn(static_cast<int>(state.range(0)), ascending);
        fixture.Update();
        ascending = !ascending;
    }
}
BENCHMARK(Sort)->Name("sort by column")->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
