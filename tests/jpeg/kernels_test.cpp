// Every set of kernels gives what the portable one gives, byte for byte, and touches no byte beside
// those it was given; the portable one gives what it gave when each of its bytes was compared with
// a model written from the equations.

#include "jpeg/jpeg_kernels.h"
#include "jpeg/jpeg_tables.h"
#include "tests/jpeg/corpus.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <sys/mman.h>

namespace marvolen::test {
namespace {

using Block = std::array<std::int16_t, 64>;

// Memory between two stretches that nobody may touch, used right behind the one or right in front
// of the other.
class Fenced {
public:
    Fenced() {
        void* const all = mmap(nullptr, kRoom + 2 * kFence, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS,
                               /*fd=*/-1, /*offset=*/0);
        room = static_cast<std::uint8_t*>(all) + kFence;
        EXPECT_EQ(mprotect(room, kRoom, PROT_READ | PROT_WRITE), 0);
    }
    ~Fenced() { munmap(room - kFence, kRoom + 2 * kFence); }
    Fenced(const Fenced&) = delete;
    Fenced& operator=(const Fenced&) = delete;

    std::uint8_t* Take(std::size_t count, bool front) const {
        std::uint8_t* const memory = front ? room : room + kRoom - count;
        std::memset(memory, 0xA5, count);
        return memory;
    }
    template <class T>
    const T* Put(const T* from, std::size_t count, bool front) const {
        return static_cast<const T*>(
            std::memcpy(Take(count * sizeof(T), front), from, count * sizeof(T)));
    }

private:
    static constexpr std::size_t kFence = 1 << 16, kRoom = 1 << 18;
    std::uint8_t* room = nullptr;
};

// Both inverse DCTs, with a camera's table and a wild one, of each block beside the one before it
// and above it: blocks with a single coefficient, and with some up to every end, few and far out of
// range.
Bytes Transform(const JpegKernels& kernels, bool front) {
    std::mt19937 random(20240229);
    const auto below = [&](int limit) {
        const auto range = static_cast<unsigned>(2 * limit + 2);
        return static_cast<std::int16_t>(static_cast<int>(random() % range) - limit - 1);
    };
    Block camera, wild, before{};
    for (std::size_t i = 0; i < 64; ++i) {
        const int entry = static_cast<int>(3 + i / 8 * 5 + i % 8 * 4);
        camera[i] = static_cast<std::int16_t>((kAanScale[i] * entry + 2048) >> 12);
        wild[i] = below(32767);
    }
    const Fenced fences[5];
    int endBefore = 1;
    Bytes all;
    const auto transform = [&](const Block& block, int end) {
        const auto put = [&](int fence, const Block& words) {
            return fences[fence].Put(words.data(), words.size(), front);
        };
        for (const bool beneath : {false, true}) {
            for (const int edge : {8, 4}) {
                constexpr int kStride = 19;
                const int across = beneath ? edge : 2 * edge, down = beneath ? 2 * edge : edge;
                const int size = (down - 1) * kStride + across;
                auto* const out = fences[4].Take(static_cast<std::size_t>(size), front);
                (edge == 8 ? kernels.fullIdct : kernels.halfIdct)(
                    {put(0, block), put(1, camera), end, out},
                    {put(2, before), put(3, wild), endBefore,
                     out + (beneath ? edge * kStride : edge)},
                    kStride);
                all.insert(all.end(), out, out + size);
            }
        }
        std::uint8_t plain[64];
        PlainIdct(block.data(), plain, 8);
        all.insert(all.end(), plain, plain + 64);
        before = block;
        endBefore = end;
    };
    for (std::size_t i = 0; i < 64 * 6; ++i) {
        static constexpr std::int16_t kValues[] = {1, -1, 37, -1024, 32767, -32768};
        Block block{};
        block[kNaturalOrder[i / 6]] = kValues[i % 6];
        transform(block, static_cast<int>(i / 6) + 1);
    }
    for (const int limit : {1, 15, 255, 1023, 32767}) {
        for (std::size_t end = 1; end <= 64; ++end) {
            Block block{};
            for (std::size_t i = 0; i < end; ++i) {
                if (random() % 2 == 0) block[kNaturalOrder[i]] = below(limit);
            }
            transform(block, static_cast<int>(end));
        }
    }
    return all;
}

// Rows of every layout with every pair of chroma samples, and of every length up to some vectors.
Bytes Convert(const JpegKernels& kernels, bool front) {
    std::mt19937 random(20240229);
    constexpr std::size_t kPairs = 65536;
    Bytes y(kPairs), below(kPairs), cb(kPairs), cr(kPairs), all;
    for (auto& luma : y) luma = static_cast<std::uint8_t>(random());
    for (auto& luma : below) luma = static_cast<std::uint8_t>(random() % 3 * 127);
    for (std::size_t i = 0; i < kPairs; ++i) {
        cb[i] = static_cast<std::uint8_t>(i);
        cr[i] = static_cast<std::uint8_t>(i >> 8);
    }
    const Fenced fences[6];
    for (std::size_t n = 0; n <= kPairs; n = n == 150 ? kPairs : n + 1) {
        for (std::size_t mode = 0; mode < kColourModes; ++mode) {
            const std::size_t samples = mode == 0 ? 0 : mode % 2 == 0 ? (n + 1) / 2 : n;
            const std::size_t second = mode < 3 ? 0 : n;
            const SampleLines lines = {
                fences[0].Put(y.data(), n, front), fences[1].Put(below.data(), second, front),
                fences[2].Put(cb.data(), samples, front), fences[3].Put(cr.data(), samples, front)};
            auto* const upper = fences[4].Take(3 * n, front);
            auto* const lower = fences[5].Take(3 * second, front);
            kernels.buildBgr[mode](lines, static_cast<int>(n), upper, lower);
            all.insert(all.end(), upper, upper + 3 * n);
            all.insert(all.end(), lower, lower + 3 * second);
        }
    }
    return all;
}

TEST(KernelsTest, GiveTheSameBytesAndTouchNoOthers) {
    for (const auto& [run, digest] :
         {std::pair{&Transform, 1072998104U}, {&Convert, 1531190221U}}) {
        const Bytes expected = run(*AvailableJpegKernels().front(), true);
        EXPECT_EQ(Digest(expected), digest);
        for (const JpegKernels* kernels : AvailableJpegKernels()) {
            for (const bool front : {false, true}) {
                const Bytes bytes = run(*kernels, front);
                const auto differ = std::mismatch(bytes.begin(), bytes.end(), expected.begin());
                EXPECT_EQ(differ.first - bytes.begin(), std::ssize(bytes)) << kernels->name;
            }
        }
    }
}

}  // namespace
}  // namespace marvolen::test
