// Decoding a camera picture to a bottom-up B, G, R bitmap: DibImage against libjpeg-turbo with its
// fast DCT and fast upsampling, in one run. The last lines give the speed of ours as a share of it.

#include "bench/photograph.h"
#include "jpeg/dib_image.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <turbojpeg.h>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Sample {
    std::string name;
    Bytes jpeg;
    int width;
    int height;
};

// 704 x 480 4:2:0 of about 35, 50 and 70 KB, and the smaller sizes a camera sends.
const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples = [] {
        std::vector<Sample> made;
        const auto add = [&](int width, int height, int noise, int quality) {
            const auto picture = marvolen::bench::MakePhotograph(width, height, noise);
            Bytes jpeg = marvolen::bench::EncodeJpeg(picture, quality);
            std::string name = std::to_string(width) + "x" + std::to_string(height) + "/" +
                               std::to_string((jpeg.size() + 512) / 1024) + "KB";
            made.push_back({std::move(name), std::move(jpeg), width, height});
        };
        add(704, 480, 6, 60);
        add(704, 480, 6, 75);
        add(704, 480, 6, 85);
        add(352, 240, 6, 75);
        return made;
    }();
    return samples;
}

void SetCounters(benchmark::State& state, const Sample& sample) {
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sample.jpeg.size()));
}

void DecodeOurs(benchmark::State& state, const Sample& sample) {
    marvolen::DibImage image;
    for (auto _ : state) {
        if (image.DecodeJpeg(sample.jpeg.data(), sample.jpeg.size()) != 1) {
            state.SkipWithError("not decoded");
            break;
        }
        benchmark::DoNotOptimize(image.GetPixels());
    }
    SetCounters(state, sample);
}

void DecodeTurbo(benchmark::State& state, const Sample& sample) {
    const tjhandle decoder = tjInitDecompress();
    const int stride = static_cast<int>(marvolen::DibImage::StrideOf(sample.width));
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride * sample.height));
    constexpr int kFlags = TJFLAG_FASTDCT | TJFLAG_FASTUPSAMPLE | TJFLAG_BOTTOMUP;
    for (auto _ : state) {
        if (tjDecompress2(decoder, sample.jpeg.data(),
                          static_cast<unsigned long>(sample.jpeg.size()), pixels.data(),
                          sample.width, stride, sample.height, TJPF_BGR, kFlags) != 0) {
            state.SkipWithError("not decoded");
            break;
        }
        benchmark::DoNotOptimize(pixels.data());
    }
    tjDestroy(decoder);
    SetCounters(state, sample);
}

// Remembers the times that it prints; of repetitions, the best.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [entry, isNew] = times.try_emplace(run.run_name.function_name, time);
            if (!isNew && time < entry->second) entry->second = time;
        }
    }
    void PrintRatios() const {
        for (const Sample& sample : Samples()) {
            const auto ours = times.find("Marvolen/" + sample.name);
            const auto turbo = times.find("Turbo/" + sample.name);
            if (ours == times.end() || turbo == times.end()) continue;
            std::printf("%s: %.2f of libjpeg-turbo's speed\n", sample.name.c_str(),
                        turbo->second / ours->second);
        }
    }

private:
    std::map<std::string, double> times;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const Sample& sample : Samples()) {
        const auto add = [&](const char* decoder,
                             void (*decode)(benchmark::State&, const Sample&)) {
            benchmark::RegisterBenchmark((decoder + sample.name).c_str(), decode, sample)
                ->Unit(benchmark::kMicrosecond)
                ->MinTime(0.2)
                ->Repetitions(3);
        };
        add("Marvolen/", DecodeOurs);
        add("Turbo/", DecodeTurbo);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    return 0;
}
