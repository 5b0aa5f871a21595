#include "jpeg/simd/bgr_rows_simd.h"
#include "jpeg/simd/idct_simd.h"
#include "jpeg/simd/ops_sse2.h"
#include "jpeg/simd/simd_kernels.h"

namespace marvolen {

using simd::Sse2Ops;

const JpegKernels kSse2JpegKernels = {
    .name = "sse2",
    .fullIdct = simd::FullIdct<Sse2Ops>,
    .halfIdct = simd::HalfIdct<Sse2Ops>,
    .buildBgr = {simd::BuildBgr<Sse2Ops, 0, 1>, simd::BuildBgr<Sse2Ops, 1, 1>,
                 simd::BuildBgr<Sse2Ops, 2, 1>, simd::BuildBgr<Sse2Ops, 1, 2>,
                 simd::BuildBgr<Sse2Ops, 2, 2>},
    .refineBlock = RefineBlockPortable,
};

}  // namespace marvolen
