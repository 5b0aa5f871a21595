#pragma once

// The inner loops of the stretch, one set for each kind of processor. All sets give the same pixels
// for the same picture, whatever it is; "portable" is the reference. Kernels keep no state and run
// on any thread.

#include "display/axis_weights.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace marvolen {

// A source row's share of a target row. Borrowed.
struct WeightedRow {
    const std::uint8_t* samples = nullptr;
    std::uint16_t weight = 0;  // in 1/256, at least 1
};

struct StretchKernels {
    // Blends count rows of so many samples, whose weights sum to 256, to one. There is room for as
    // many words as samples and kBlendedSlack more; what stands there is the set's own business.
    using BlendRows = void (*)(const WeightedRow* rows, std::size_t count, std::size_t samples,
                               std::uint16_t* blended);
    // Makes a whole row of target pixels of a blended row.
    using BlendColumns = void (*)(const ColumnTaps& columns, const std::uint16_t* blended,
                                  std::uint32_t* target);

    const char* name;
    BlendRows blendRows;
    BlendColumns blendColumns;
};

// Words behind a blended row that a kernel may touch.
inline constexpr std::size_t kBlendedSlack = 16;

// Every set that this processor can run: the portable one first, the best one last.
std::span<const StretchKernels* const> AvailableStretchKernels();

extern const StretchKernels kPortableStretchKernels;
// Each in a file of its own that is compiled for its set and instantiates nothing but its own
// static functions: an inline function of a library, compiled with these instructions, might be the
// copy that the linker keeps for all.
#if defined(__x86_64__)
extern const StretchKernels kSse2StretchKernels;  // any 64-bit x86
extern const StretchKernels kAvx2StretchKernels;  // AVX2
#endif

}  // namespace marvolen
