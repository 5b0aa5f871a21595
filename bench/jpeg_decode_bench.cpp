// Decoding camera pictures to bottom-up B, G, R bitmaps: DibImage against libjpeg-turbo with its
// fast DCT and fast upsampling, and against libavcodec with swscale, in one run.
//
//   jpeg_decode_bench [--turns N] [--kernels NAME] [FOLDER]
//
// FOLDER holds a folder of JPEG files for each kind of picture (scripts/make_frames.sh makes it);
// without it made-up photographs are decoded. All decoders take turns of one pass over a kind's
// pictures. A line a kind tells our processor time a picture and its share of each peer's, the
// median of all turns: below 1 is faster than the peer. Any set of kernels that the processor can
// run may be named.

#include "bench/alternate.h"
#include "bench/peer_decoders.h"
#include "bench/photograph.h"
#include "jpeg/dib_image.h"
#include "jpeg/jpeg_kernels.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

struct Kind {
    std::string name;
    std::vector<Bytes> pictures;
};

void Require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "jpeg_decode_bench: %s\n", what.c_str());
    std::exit(1);
}

std::vector<Kind> MadeUpKinds() {
    std::vector<Kind> kinds;
    for (const auto& [width, height, quality] :
         {std::array{704, 480, 60}, {704, 480, 75}, {704, 480, 85}, {352, 240, 75}}) {
        Kind& kind = kinds.emplace_back();
        kind.name = std::to_string(width) + "x" + std::to_string(height) + "-420-q" +
                    std::to_string(quality);
        for (unsigned seed = 0; seed < 4; ++seed) {
            const bench::Picture picture = bench::MakePhotograph(width, height, 6, seed);
            kind.pictures.push_back(bench::EncodeJpeg(picture, quality));
        }
    }
    return kinds;
}

std::vector<Kind> LoadKinds(const fs::path& folder) {
    std::vector<Kind> kinds;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!entry.is_directory()) continue;
        Kind kind{entry.path().filename().string(), {}};
        for (const auto& file : fs::directory_iterator(entry)) {
            std::ifstream in(file.path(), std::ios::binary);
            kind.pictures.emplace_back(std::istreambuf_iterator<char>(in),
                                       std::istreambuf_iterator<char>());
        }
        if (!kind.pictures.empty()) kinds.push_back(std::move(kind));
    }
    std::sort(kinds.begin(), kinds.end(),
              [](const Kind& a, const Kind& b) { return a.name < b.name; });
    Require(!kinds.empty(), "no pictures in " + folder.string());
    return kinds;
}

void DecodeOurs(DibImage& image, const Kind& kind) {
    for (const Bytes& jpeg : kind.pictures) {
        Require(image.DecodeJpeg(jpeg.data(), jpeg.size()) == 1, "can't decode " + kind.name);
    }
}

void Measure(const Kind& kind, int turns,
             const std::vector<std::unique_ptr<bench::PeerDecoder>>& peers) {
    DibImage image;
    std::vector<double> times;
    std::string ratios;
    for (const auto& peer : peers) {
        const bench::Turns taken = bench::Alternate(
            turns, [&] { DecodeOurs(image, kind); },
            [&] {
                for (const Bytes& jpeg : kind.pictures) {
                    Require(peer->Decode(jpeg), peer->Name() + (" can't decode " + kind.name));
                }
            });
        times.insert(times.end(), taken.ours.begin(), taken.ours.end());
        char text[32];
        std::snprintf(text, sizeof text, "  %14.2f", taken.Ratio());
        ratios += text;
    }
    std::printf("%-22s %9.3f%s\n", kind.name.c_str(),
                bench::Median(times) * 1000 / double(kind.pictures.size()), ratios.c_str());
    std::fflush(stdout);
}

void UseKernels(const char* name) {
    for (const JpegKernels* kernels : AvailableJpegKernels()) {
        if (std::strcmp(kernels->name, name) == 0) return ForceJpegKernels(kernels);
    }
    Require(false, std::string("no kernels named ") + name);
}

int Run(int argc, char** argv) {
    int turns = 40;
    const char* folder = nullptr;
    for (int k = 1; k < argc; ++k) {
        if (std::strcmp(argv[k], "--turns") == 0 && k + 1 < argc) {
            turns = std::max(1, std::atoi(argv[++k]));
        } else if (std::strcmp(argv[k], "--kernels") == 0 && k + 1 < argc) {
            UseKernels(argv[++k]);
        } else {
            folder = argv[k];
        }
    }
    std::vector<std::unique_ptr<bench::PeerDecoder>> peers;
    peers.push_back(bench::MakeTurboDecoder());
    if (auto peer = bench::MakeAvDecoder()) peers.push_back(std::move(peer));
    std::printf("%-22s %9s", "decode", "ms");
    for (const auto& peer : peers) std::printf("  %14s", peer->Name());
    std::printf("\n");
    for (const Kind& kind : folder ? LoadKinds(folder) : MadeUpKinds()) Measure(kind, turns, peers);
    return 0;
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    return marvolen::Run(argc, argv);
}
