// What recording and playing back cost next to plain file access, in the same run on the same disk.
//
//   record_bench                      in the current folder, which needs 2.5 GiB
//
// AppendAgainstPlainWrite alternates between appending frames to a wrapped ring and writing the
// same bytes to a plain file of the same size, so that both meet the same state of the disk. Its
// counter ratio is the ring's speed divided by the plain file's.

#include "net/frame_pool.h"
#include "record/record_file.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kMiB = 1048576;
constexpr std::uint64_t kRing = 256 * kMiB;       // appended to
constexpr std::uint64_t kFullFile = 1024 * kMiB;  // opened and read
constexpr std::uint32_t kMeanFrame = 50000;

// A folder for the files, gone with the program.
class BenchFolder {
public:
    BenchFolder() : folder("record_bench." + std::to_string(getpid())) {
        fs::create_directory(folder);
    }
    ~BenchFolder() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    std::string operator/(const char* name) const { return (folder / name).string(); }

private:
    fs::path folder;
};

BenchFolder* g_folder = nullptr;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "record_bench: " << what << '\n';
    std::exit(1);
}

class Frames {
public:
    Frames() {
        Require(pool.Init(kFrameCapacity, 1), "no memory");
        frame = pool.Acquire();
        std::generate_n(frame->Data(), frame->Capacity(),
                        [&] { return static_cast<std::uint8_t>(random()); });
        frame->SetTime(LocalTimeNow());
        Next();
    }
    VideoFrame& Frame() { return *frame; }
    VideoFrame& Next() {
        frame->SetLength(kMeanFrame * 9 / 10 +
                         static_cast<std::uint32_t>(random() % (kMeanFrame / 5)));
        return *frame;
    }

private:
    FramePool pool;
    FramePtr frame;
    std::mt19937 random{1};
};

// More than once around, so that the file has its full size and the head has moved.
void FillRing(RecordFile& file, const std::string& path, std::uint64_t maxSize, Frames& frames) {
    Require(file.CreateNew(path, maxSize), "can't create a record file");
    for (std::uint64_t written = 0; written < maxSize + maxSize / 8; written += kMeanFrame) {
        Require(file.WriteFrame(frames.Next()), "can't write a record");
    }
}

double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// A file of the ring's size that is written over again and again.
class PlainFile {
public:
    PlainFile(const std::string& path, std::uint64_t size)
        : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)), limit(size) {
        Require(descriptor >= 0, "can't create a plain file");
    }
    ~PlainFile() { close(descriptor); }
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;

    void Write(const VideoFrame& frame) {
        if (position + frame.Length() > limit) {
            position = 0;
            Require(lseek(descriptor, 0, SEEK_SET) == 0, "can't seek");
        }
        Require(write(descriptor, frame.Data(), frame.Length()) == frame.Length(), "can't write");
        position += frame.Length();
    }

private:
    int descriptor;
    std::uint64_t limit;
    std::uint64_t position = 0;
};

void AppendAgainstPlainWrite(benchmark::State& state) {
    Frames frames;
    RecordFile ring;
    FillRing(ring, *g_folder / "ring.dbt", kRing, frames);
    PlainFile plain(*g_folder / "plain", kRing);
    for (std::uint64_t k = 0; k < kRing + kRing / 8; k += kMeanFrame) plain.Write(frames.Next());

    constexpr int kTurn = 200;  // frames
    std::vector<double> ratios;
    Clock::duration ringTime{};
    std::int64_t bytes = 0;
    Frames toRing;  // the same lengths for both
    Frames toPlain;
    for (auto _ : state) {
        const auto start = Clock::now();
        for (int k = 0; k < kTurn; ++k) {
            Require(ring.WriteFrame(toRing.Next()), "can't append");
        }
        const auto middle = Clock::now();
        for (int k = 0; k < kTurn; ++k) plain.Write(toPlain.Next());
        const auto end = Clock::now();
        ringTime += middle - start;
        ratios.push_back(Seconds(end - middle) / Seconds(middle - start));
        state.SetIterationTime(Seconds(middle - start));
        bytes += std::int64_t{kTurn} * kMeanFrame;
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["ratio"] = ratios[ratios.size() / 2];
    state.counters["us_per_frame"] =
        Seconds(ringTime) * 1e6 / (static_cast<double>(state.iterations()) * kTurn);
    state.SetBytesProcessed(bytes);
    ring.CloseWriter();
}
BENCHMARK(AppendAgainstPlainWrite)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3);

// The full 1 GiB file that the readers share, in the page cache once it is written.
const std::string& FullFile() {
    static const std::string path = [] {
        Frames frames;
        RecordFile file;
        std::string made = *g_folder / "full.dbt";
        FillRing(file, made, kFullFile, frames);
        file.CloseWriter();
        return made;
    }();
    return path;
}

void OpenForRead(benchmark::State& state) {
    const std::string& path = FullFile();
    RecordFile file;
    for (auto _ : state) {
        Require(file.OpenForRead(path), "can't open for reading");
        file.CloseReader();
    }
}
BENCHMARK(OpenForRead)->Unit(benchmark::kMicrosecond);

void OpenAppend(benchmark::State& state) {
    const std::string& path = FullFile();
    RecordFile file;
    for (auto _ : state) {
        Require(file.OpenAppend(path, kFullFile), "can't open for appending");
        file.CloseWriter();
    }
}
BENCHMARK(OpenAppend)->Unit(benchmark::kMicrosecond);

class Reader {
public:
    Reader() {
        Require(file.OpenForRead(FullFile()), "can't open for reading");
        count = file.RecordCount();
    }
    RecordFile file;
    Frames frames;
    std::uint32_t count = 0;
};

void StepAndRead(benchmark::State& state) {
    Reader reader;
    for (auto _ : state) {
        if (!reader.file.StepForward()) Require(reader.file.SeekTo(0), "can't seek");
        Require(reader.file.ReadRecord(reader.frames.Frame()), "can't read");
    }
    state.SetBytesProcessed(state.iterations() * kMeanFrame);
}
BENCHMARK(StepAndRead)->Unit(benchmark::kMicrosecond);

void SeekAnywhereAndRead(benchmark::State& state) {
    Reader reader;
    std::mt19937 random(2);
    for (auto _ : state) {
        Require(reader.file.SeekTo(static_cast<std::uint32_t>(random() % reader.count)) &&
                    reader.file.ReadRecord(reader.frames.Frame()),
                "can't seek and read");
    }
    state.SetBytesProcessed(state.iterations() * kMeanFrame);
}
BENCHMARK(SeekAnywhereAndRead)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    static marvolen::BenchFolder folder;  // removed by exit, too
    marvolen::g_folder = &folder;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
