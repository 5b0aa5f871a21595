#include "jpeg/refine_block.h"

#include "jpeg/refine_block_ops.h"

namespace marvolen {
namespace {

struct PortableRefineOps {
    // The position of the bit that is set behind n other ones, or none.
    static int NthBit(std::uint64_t mask, int n, int none) {
        for (; n > 0; --n) mask &= mask - 1;
        return mask == 0 ? none : __builtin_ctzll(mask);
    }
    // The low bits of bits, in the places of the bits that are set in mask.
    static std::uint64_t Spread(std::uint64_t bits, std::uint64_t mask) {
        std::uint64_t spread = 0;
        for (; mask != 0; mask &= mask - 1, bits >>= 1) {
            spread |= (mask & (0 - mask)) & (0 - (bits & 1));
        }
        return spread;
    }
};

}  // namespace

bool RefineBlockPortable(const AcRefinement& scan, BitCursor& in, std::uint32_t& endOfBandRun,
                         const CoefficientBlock& block) {
    return RefineBlock<PortableRefineOps>(scan, in, endOfBandRun, block);
}

}  // namespace marvolen
