// Every set of kernels gives what the portable one gives, byte for byte, and the portable one what
// it gave when each of its bytes was compared with a model written from the equations.

#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_tables.h"
#include "tests/jpeg/corpus.h"

#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

using Block = std::array<std::int16_t, 64>;

// Both inverse DCTs, with a camera's table and a wild one, into the middle of a wider buffer: of
// blocks with a single coefficient, with few, with all, and far out of range.
Bytes Transform(const JpegKernels& kernels) {
    std::mt19937 random(20240229);
    const auto below = [&](int limit) {
        const auto range = static_cast<unsigned>(2 * limit + 2);
        return static_cast<std::int16_t>(static_cast<int>(random() % range) - limit - 1);
    };
    Block camera, wild;
    for (std::size_t i = 0; i < 64; ++i) {
        const int entry = static_cast<int>(3 + i / 8 * 5 + i % 8 * 4);
        camera[i] = static_cast<std::int16_t>((kAanScale[i] * entry + 2048) >> 12);
        wild[i] = below(32767);
    }
    Bytes all;
    const auto transform = [&](const Block& block) {
        Bytes windows(5 * 240, 0xA5);
        int end = 64;
        while (end > 1 && block[kNaturalOrder[static_cast<std::size_t>(end - 1)]] == 0) --end;
        const auto at = [&](const Block& table, std::ptrdiff_t offset) {
            return IdctBlock{block.data(), table.data(), end, windows.data() + offset};
        };
        kernels.fullIdct(at(camera, 32), at(wild, 272), 24);
        kernels.halfIdct(at(wild, 512), at(camera, 752), 24);
        PlainIdct(block.data(), windows.data() + 992, 24);
        all.insert(all.end(), windows.begin(), windows.end());
    };
    for (std::size_t i = 0; i < 64 * 6; ++i) {
        static constexpr std::int16_t kValues[] = {1, -1, 37, -1024, 32767, -32768};
        Block block{};
        block[i / 6] = kValues[i % 6];
        transform(block);
    }
    for (const int limit : {1, 15, 255, 1023, 32767}) {
        for (int filled = 2; filled <= 64; filled += 2) {
            Block block{};
            for (int i = 0; i < filled; ++i) block[random() % 64] = below(limit);
            transform(block);
        }
    }
    return all;
}

// Rows of every layout with every pair of chroma samples, and of every length up to some vectors.
Bytes Convert(const JpegKernels& kernels) {
    std::mt19937 random(20240229);
    constexpr std::size_t kPairs = 65536;
    Bytes y(2 * kPairs), below(2 * kPairs), cb(kPairs), cr(kPairs), all;
    for (auto& luma : y) luma = static_cast<std::uint8_t>(random());
    for (auto& luma : below) luma = static_cast<std::uint8_t>(random() % 3 * 127);
    for (std::size_t i = 0; i < kPairs; ++i) {
        cb[i] = static_cast<std::uint8_t>(i);
        cr[i] = static_cast<std::uint8_t>(i >> 8);
    }
    // Each alone on the heap, so that a sanitizer sees a byte read behind its end.
    const auto take = [](const Bytes& from, std::size_t count) {
        return Bytes(from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count));
    };
    for (int pixels = 0; pixels <= 65536; pixels = pixels == 150 ? 65536 : pixels + 1) {
        const auto n = static_cast<std::size_t>(pixels);
        const Bytes ys = take(y, n), yBelow = take(below, n);
        for (std::size_t mode = 0; mode < kColourModes; ++mode) {
            const std::size_t samples = mode == 0 ? 0 : mode % 2 == 0 ? (n + 1) / 2 : n;
            const Bytes cbs = take(cb, samples), crs = take(cr, samples);
            const SampleLines lines = {ys.data(), yBelow.data(), cbs.data(), crs.data()};
            Bytes rows(6 * n + 32, 0xA5);
            kernels.buildBgr[mode](lines, pixels, rows.data(), rows.data() + rows.size() / 2);
            all.insert(all.end(), rows.begin(), rows.end());
        }
    }
    return all;
}

TEST(KernelsTest, GiveTheSameBytes) {
    for (const JpegKernels* kernels : AvailableJpegKernels()) {
        for (const auto& [run, digest] :
             {std::pair{&Transform, 2111866049U}, {&Convert, 1815921735U}}) {
            const Bytes bytes = run(*kernels);
            const Bytes expected = run(*AvailableJpegKernels().front());
            const auto differ = std::mismatch(bytes.begin(), bytes.end(), expected.begin());
            EXPECT_EQ(differ.first - bytes.begin(), std::ssize(bytes)) << kernels->name;
            EXPECT_EQ(Digest(expected), digest) << kernels->name;
        }
    }
}

}  // namespace
}  // namespace marvolen::test
