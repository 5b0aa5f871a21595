#pragma once

#include "jpeg/jpeg_kernels.h"

namespace marvolen {

// Sets of kernels for instruction sets, each in a file of its own that is compiled for its set.
// They may run only where the processor has it. A kernel file instantiates nothing but its own
// static functions: an inline function of a library, compiled with these instructions, might be the
// copy that the linker keeps for all.

#if defined(__x86_64__)
extern const JpegKernels kSse2JpegKernels;  // any 64-bit x86
extern const JpegKernels kAvx2JpegKernels;  // AVX2 and BMI2
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
extern const JpegKernels kNeonJpegKernels;  // any 64-bit little-endian ARM
#endif

}  // namespace marvolen
