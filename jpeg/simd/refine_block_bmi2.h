#pragma once

#include "jpeg/refine_block_ops.h"

#include <immintrin.h>

namespace marvolen {
namespace {

// BMI2 spreads bits over a mask in one instruction, and with it finds the n-th bit of one.
struct Bmi2RefineOps {
    static int NthBit(std::uint64_t mask, int n, int none) {
        const std::uint64_t bit = _pdep_u64(std::uint64_t{1} << n, mask);
        return bit == 0 ? none : __builtin_ctzll(bit);
    }
    static std::uint64_t Spread(std::uint64_t bits, std::uint64_t mask) {
        return _pdep_u64(bits, mask);
    }
};

}  // namespace
}  // namespace marvolen
