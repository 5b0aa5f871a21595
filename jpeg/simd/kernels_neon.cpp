#include "jpeg/simd/bgr_rows_simd.h"
#include "jpeg/simd/idct_simd.h"
#include "jpeg/simd/ops_neon.h"
#include "jpeg/simd/simd_kernels.h"

namespace marvolen {

using simd::NeonOps;

const JpegKernels kNeonJpegKernels = {
    .name = "neon",
    .fullIdct = simd::FullIdct<NeonOps>,
    .halfIdct = simd::HalfIdct<NeonOps>,
    .buildBgr = {simd::BuildBgr<NeonOps, 0, 1>, simd::BuildBgr<NeonOps, 1, 1>,
                 simd::BuildBgr<NeonOps, 2, 1>, simd::BuildBgr<NeonOps, 1, 2>,
                 simd::BuildBgr<NeonOps, 2, 2>},
    .refineBlock = RefineBlockPortable,
};

}  // namespace marvolen
