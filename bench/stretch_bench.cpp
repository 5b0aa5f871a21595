// Stretching pictures to a pane's size: every set of kernels against swscale's fast bilinear
// filter, which reads two pixels each way however many the target pixel covers, in one run.
//
//   stretch_bench [--turns N]
//
// A line for each size tells the best kernels' time and their processor time as a share of the
// peer's, another the times of the others. Without swscale the peer is memcpy of both pictures.

#include "bench/alternate.h"
#include "display/stretch.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#ifdef MARVOLEN_BENCH_LIBAV
extern "C" {
#include <libswscale/swscale.h>
}
#endif

namespace marvolen {
namespace {

struct Sizes {
    int width, height, toWidth, toHeight;
};

// View 16: a large picture, its half, a small one enlarged to view 1, and a full one there.
constexpr Sizes kSizes[] = {
    {704, 480, 348, 228}, {352, 240, 348, 228}, {352, 240, 1440, 810}, {1920, 1080, 1440, 810}};

#ifdef MARVOLEN_BENCH_LIBAV
constexpr const char* kPeer = "swscale";

class Peer {
public:
    explicit Peer(const Sizes& sizes)
        : scaler(sws_getContext(sizes.width, sizes.height, AV_PIX_FMT_BGR24, sizes.toWidth,
                                sizes.toHeight, AV_PIX_FMT_BGR0, SWS_FAST_BILINEAR, nullptr,
                                nullptr, nullptr)) {}
    ~Peer() { sws_freeContext(scaler); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    void Work(const BottomUpPicture& source, ScreenImage& target) {
        const auto stride = static_cast<int>(source.stride);
        const std::uint8_t* const from[] = {source.pixels +
                                            std::ptrdiff_t{stride} * (source.height - 1)};
        const int strides[] = {-stride};
        auto* const to = reinterpret_cast<std::uint8_t*>(target.pixels.data());
        std::uint8_t* const rows[] = {to};
        const int targetStrides[] = {target.width * 4};
        sws_scale(scaler, from, strides, 0, source.height, rows, targetStrides);
    }

private:
    SwsContext* const scaler;
};
#else
constexpr const char* kPeer = "memcpy";

class Peer {
public:
    explicit Peer(const Sizes&) {}
    void Work(const BottomUpPicture& source, ScreenImage& target) {
        bytes.resize(source.stride * static_cast<std::size_t>(source.height) +
                     target.pixels.size() * 4);
        const std::size_t count = bytes.size() - target.pixels.size() * 4;
        std::memcpy(bytes.data(), source.pixels, count);
        std::memcpy(bytes.data() + count, target.pixels.data(), target.pixels.size() * 4);
    }

private:
    std::vector<std::uint8_t> bytes;
};
#endif

void Measure(const Sizes& sizes, int turns) {
    const std::size_t stride = (static_cast<std::size_t>(sizes.width) * 3 + 3) / 4 * 4;
    std::vector<std::uint8_t> bytes(stride * static_cast<std::size_t>(sizes.height));
    std::mt19937 random(1);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    const BottomUpPicture source{bytes.data(), sizes.width, sizes.height, stride};
    ScreenImage image;
    if (!image.Resize(sizes.toWidth, sizes.toHeight)) std::abort();
    Peer peer(sizes);
    const auto run = [&](const StretchKernels& kernels) {
        Stretcher stretcher(kernels);
        return bench::Alternate(
            turns, [&] { stretcher.Stretch(source, image); }, [&] { peer.Work(source, image); });
    };
    const auto micros = [](const bench::Turns& taken) { return bench::Median(taken.ours) * 1e6; };
    const auto sets = AvailableStretchKernels();
    const bench::Turns best = run(*sets.back());
    std::printf("%dx%d to %dx%d: %s %.0f us, %.2f of %s's processor time\n", sizes.width,
                sizes.height, sizes.toWidth, sizes.toHeight, sets.back()->name, micros(best),
                best.Ratio(), kPeer);
    for (const StretchKernels* kernels : sets.first(sets.size() - 1)) {
        std::printf("  %s %.0f us", kernels->name, micros(run(*kernels)));
    }
    std::printf("\n");
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    const bool told = argc == 3 && std::strcmp(argv[1], "--turns") == 0;
    const int turns = told ? std::max(1, std::atoi(argv[2])) : 200;
    for (const auto& sizes : marvolen::kSizes) marvolen::Measure(sizes, turns);
    return 0;
}
