#include "jpeg/jpeg_kernels.h"

#include "jpeg/simd/simd_kernels.h"

#include <atomic>

namespace marvolen {
namespace {

constexpr JpegKernels kPortable = {
    .name = "portable",
    .fullIdct = FastIdctPortable,
    .halfIdct = HalfIdctPortable,
    .buildBgr = {BuildGrayBgrPortable, BuildColourBgrPortable<1, 1>, BuildColourBgrPortable<2, 1>,
                 BuildColourBgrPortable<1, 2>, BuildColourBgrPortable<2, 2>},
    .refineBlock = RefineBlockPortable,
};

// The sets, better ones behind, and how many of them this processor has.
struct KernelSets {
    std::array<const JpegKernels*, 3> sets = {&kPortable};
    std::size_t count = 1;

    KernelSets() {
#if defined(__x86_64__)
        sets[count++] = &kSse2JpegKernels;
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2")) {
            sets[count++] = &kAvx2JpegKernels;
        }
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
        sets[count++] = &kNeonJpegKernels;
#endif
    }
};

const KernelSets& Available() {
    static const KernelSets kSets;
    return kSets;
}

std::atomic<const JpegKernels*> g_forcedKernels = nullptr;

}  // namespace

std::span<const JpegKernels* const> AvailableJpegKernels() {
    return {Available().sets.data(), Available().count};
}

const JpegKernels& ActiveJpegKernels() {
    const JpegKernels* forced = g_forcedKernels.load(std::memory_order_acquire);
    return forced != nullptr ? *forced : *AvailableJpegKernels().back();
}

void ForceJpegKernels(const JpegKernels* kernels) {
    g_forcedKernels.store(kernels, std::memory_order_release);
}

}  // namespace marvolen
