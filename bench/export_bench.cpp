// What exporting costs, in the same run on the same disk and the same records of 704 x 480.
//
//   export_bench                      in the current folder, which needs 1 GiB
//
// ExportAgainstCopy alternates between `record_file export` and copying the record file;
// its counter ratio is the export's speed divided by the copy's. PlayAgainstDecoder alternates
// between exporting through the chain that plays and decodes every picture and decoding the same
// pictures from memory; ratio is the chain's speed divided by the decoder's.

#include "bench/photograph.h"
#include "bench/playing_host.h"
#include "tools/record_file/record_commands.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kRing = 512ULL * 1048576;
constexpr std::uint32_t kRecords = 6000;
constexpr std::uint32_t kPlayed = 300;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "export_bench: " << what << '\n';
    std::exit(1);
}

const std::vector<Bytes>& Pictures() {
    static const std::vector<Bytes> pictures = [] {
        std::vector<Bytes> made;
        for (unsigned seed = 0; seed < 16; ++seed) {
            made.push_back(bench::EncodeJpeg(bench::MakePhotograph(704, 480, 6, seed), 80));
        }
        return made;
    }();
    return pictures;
}

// A recording, gone with the program.
class Recording {
public:
    Recording(const char* name, std::uint32_t records) : path(name) {
        FramePool pool;
        RecordFile file;
        Require(pool.Init(kFrameCapacity, 1) && file.CreateNew(path, kRing), "can't record");
        const FramePtr frame = pool.Acquire();
        frame->SetTime(LocalTimeNow());
        for (std::uint32_t k = 0; k < records; ++k) {
            const Bytes& picture = Pictures()[k % Pictures().size()];
            std::memcpy(frame->Data(), picture.data(), picture.size());
            frame->SetLength(static_cast<std::uint32_t>(picture.size()));
            Require(file.WriteFrame(*frame), "can't record");
        }
        file.CloseWriter();
    }
    ~Recording() { fs::remove(path); }
    const std::string path;
};

void Copy(const std::string& from, const std::string& to) {
    FileHandle source;
    FileHandle target;
    Require(source.OpenShared(from) && target.Create(to), "can't copy");
    std::vector<std::uint8_t> buffer(1048576);
    std::uint32_t got = 0;
    do {
        std::uint32_t put = 0;
        Require(source.Read(buffer.data(), 1048576, got) && target.Write(buffer.data(), got, put),
                "can't copy");
    } while (got > 0);
}

// Times both, alternately; the state's own time is the first one's.
template <typename Ours, typename Theirs>
void Alternate(benchmark::State& state, Ours ours, Theirs theirs) {
    const auto seconds = [](auto work) {
        const auto start = Clock::now();
        work();
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    std::vector<double> ratios;
    for (auto _ : state) {
        const double their = seconds(theirs);
        const double our = seconds(ours);
        ratios.push_back(their / our);
        state.SetIterationTime(our);
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = ratios[ratios.size() / 2];
}

void ExportAgainstCopy(benchmark::State& state) {
    const Recording recording("export_bench.dbt", kRecords);
    Alternate(
        state,
        [&] {
            fs::remove("export_bench.avi");
            std::ostringstream out;
            Require(RunRecordTool({"export", recording.path, "export_bench.avi"}, out, out) == 0,
                    "can't export");
        },
        [&] {
            fs::remove("export_bench.copy");
            Copy(recording.path, "export_bench.copy");
        });
    fs::remove("export_bench.avi");
    fs::remove("export_bench.copy");
}
BENCHMARK(ExportAgainstCopy)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

void PlayAgainstDecoder(benchmark::State& state) {
    const Recording recording("export_bench.dbt", kPlayed);
    Alternate(
        state,
        [&] {
            test::PlayingHost host;
            Require(host.Open(recording.path), "can't play");
            AviRenderer renderer(host);
            renderer.Render();
            Require(renderer.Report().files.at(0).samples == kPlayed - 1, "can't render");
        },
        [&] {
            DibImage image;
            for (std::uint32_t k = 0; k < kPlayed; ++k) {
                const Bytes& picture = Pictures()[k % Pictures().size()];
                Require(image.DecodeJpeg(picture.data(), picture.size()) == 1, "can't decode");
            }
        });
    fs::remove("played.avi");
}
BENCHMARK(PlayAgainstDecoder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace marvolen

BENCHMARK_MAIN();
