#include "jpeg/jpeg_kernels.h"

#include "jpeg/idct.h"
#include "jpeg/pixel_rows.h"

#include <atomic>

namespace marvolen {
namespace {

constexpr JpegKernels kPortable = {
    .name = "portable",
    .fastIdct = FastIdctPortable,
    .plainIdct = PlainIdctPortable,
    .buildColour = {nullptr, BuildColourPortable<1, 1>, BuildColourPortable<2, 1>,
                    BuildColourPortable<1, 2>, BuildColourPortable<2, 2>},
    .packGray = PackGrayPortable,
    .packColour = PackColourPortable,
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
