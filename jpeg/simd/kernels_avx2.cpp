#include "jpeg/simd/bgr_rows_simd.h"
#include "jpeg/simd/idct_simd.h"
#include "jpeg/simd/ops_avx2.h"
#include "jpeg/simd/refine_block_bmi2.h"
#include "jpeg/simd/simd_kernels.h"

namespace marvolen {

using simd::Avx2Ops;

const JpegKernels kAvx2JpegKernels = {
    .name = "avx2",
    .fullIdct = simd::FullIdct<Avx2Ops>,
    .halfIdct = simd::HalfIdct<Avx2Ops>,
    .buildBgr = {simd::BuildBgr<Avx2Ops, 0, 1>, simd::BuildBgr<Avx2Ops, 1, 1>,
                 simd::BuildBgr<Avx2Ops, 2, 1>, simd::BuildBgr<Avx2Ops, 1, 2>,
                 simd::BuildBgr<Avx2Ops, 2, 2>},
    .refineBlock = RefineBlock<Bmi2RefineOps>,
};

}  // namespace marvolen
