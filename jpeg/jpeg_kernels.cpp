#include "jpeg/jpeg_kernels.h"

#include <atomic>

namespace marvolen {
namespace {

constexpr JpegKernels kPortable = {
    .name = "portable",
    .fullIdct = FastIdctPortable,
    .halfIdct = HalfIdctPortable,
    .buildBgr = {BuildGrayBgrPortable, BuildColourBgrPortable<1, 1>, BuildColourBgrPortable<2, 1>,
                 BuildColourBgrPortable<1, 2>, BuildColourBgrPortable<2, 2>},
};

constexpr std::array<const JpegKernels*, 1> kAvailable = {&kPortable};

std::atomic<const JpegKernels*> g_forcedKernels = nullptr;

}  // namespace

std::span<const JpegKernels* const> AvailableJpegKernels() {
    return kAvailable;
}

const JpegKernels& ActiveJpegKernels() {
    const JpegKernels* forced = g_forcedKernels.load(std::memory_order_acquire);
    return forced != nullptr ? *forced : *kAvailable.back();
}

void ForceJpegKernels(const JpegKernels* kernels) {
    g_forcedKernels.store(kernels, std::memory_order_release);
}

}  // namespace marvolen
