#pragma once

#include "jpeg/jpeg_source.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace marvolen::test {

using Bytes = std::vector<std::uint8_t>;

// The file NAME.jpg of the corpus.
inline Bytes ReadCorpusFile(const std::string& name) {
    std::ifstream file(std::string(JPEG_CORPUS) + "/" + name + ".jpg", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// 32-bit FNV-1a.
inline std::uint32_t Digest(const Bytes& bytes) {
    std::uint32_t digest = 2166136261;
    for (const std::uint8_t byte : bytes) digest = (digest ^ byte) * 16777619;
    return digest;
}

// Hands out at most portion bytes at every other call, none between, and fails behind limit bytes.
class PortionSource : public JpegSource {
public:
    PortionSource(const Bytes& newBytes, int newPortion, int newLimit = 1 << 30)
        : bytes(newBytes), portion(newPortion), limit(newLimit) {}

    int Read(void* destination, int maxCount, bool* endOfData) override {
        if (position >= limit) return -1;
        const int size = static_cast<int>(bytes.size());
        const int left = std::min(limit, size) - position;
        const int count = ++calls % 2 == 0 ? 0 : std::min({left, maxCount, portion});
        std::copy_n(bytes.begin() + position, count, static_cast<std::uint8_t*>(destination));
        position += count;
        *endOfData = *endOfData || position == size;
        return count;
    }
    void Begin() override { ++begun; }
    void End() override { ++ended; }

    int begun = 0, ended = 0;

private:
    const Bytes& bytes;
    const int portion, limit;
    int position = 0, calls = 0;
};

}  // namespace marvolen::test
