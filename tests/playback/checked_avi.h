#pragma once

// Checks an AVI file to the byte: goes through its samples, writes down the file that they should
// be in, and compares.

#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace marvolen::test {

struct CheckedAvi {
    bool sound = false;
    bool indexed = false;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::string> samples[2];  // pictures; texts, with their NULs
};

inline std::string Words(const std::vector<std::size_t>& words) {
    std::string bytes;
    for (const std::size_t word : words) {
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(word >> shift);
    }
    return bytes;
}

inline std::string Chunk(const std::string& id, const std::string& data) {
    return id + Words({data.size()}) + data + std::string(data.size() % 2, '\0');
}

inline std::string ExpectedAvi(const CheckedAvi& avi) {
    const std::size_t count = avi.samples[0].size();
    std::size_t largest[] = {0, 0};
    std::vector<std::size_t> starts;
    std::string movi = "movi";
    std::string index;
    for (std::size_t k = 0; k < 2 * count; ++k) {
        const std::string& sample = avi.samples[k % 2][k / 2];
        const std::string id = k % 2 == 0 ? "00dc" : "01tx";
        starts.push_back(movi.size());
        index += id + Words({0x10, movi.size(), sample.size()});
        movi += Chunk(id, sample);
        largest[k % 2] = std::max(largest[k % 2], sample.size());
    }
    std::size_t rate = 0;  // bytes of the 30 largest samples in a row
    for (std::size_t k = 0; k < 2 * count; k += 2) {
        rate = std::max(rate, (k + 60 < 2 * count ? starts[k + 60] : movi.size()) - starts[k]);
    }
    const auto stream = [&](const std::string& codes, std::size_t most,
                            const std::vector<std::size_t>& sizeAndRectangle,
                            const std::string& format) {
        const std::string header = codes + Words({0, 0, 0, 1001, 30000, 0, count, most, 0});
        return Chunk("LIST", "strl" + Chunk("strh", header + Words(sizeAndRectangle)) +
                                 Chunk("strf", format));
    };
    const std::size_t buffer = 8 + (std::max(largest[0], largest[1]) + 1) / 2 * 2;
    const std::size_t flags = avi.indexed ? 0x110 : 0x100;
    const std::string header =
        Chunk("avih", Words({33367, rate, 0, flags, count, 0, 2, buffer, avi.width, avi.height, 0,
                             0, 0, 0})) +
        stream("vidsMJPG", largest[0], {0, 0, 0},
               Words({40, avi.width, avi.height, 24 << 16 | 1}) + "MJPG" + Words({0, 0, 0, 0, 0})) +
        stream("txtsdraw", largest[1], {20, 220 << 16, 240 << 16 | 320}, Words({4}));
    return Chunk("RIFF", "AVI " + Chunk("LIST", "hdrl" + header) + Chunk("LIST", movi) +
                             (avi.indexed ? Chunk("idx1", index) : ""));
}

inline CheckedAvi CheckAvi(const std::string& path) {
    CheckedAvi avi;
    const std::string bytes = ReadWholeFile(path);
    const auto number = [&](std::size_t at) {
        std::uint32_t value = 0;
        bytes.copy(reinterpret_cast<char*>(&value), 4, at);
        return value;
    };
    if (bytes.size() < 312) return avi;
    avi.width = number(64);
    avi.height = number(68);
    const std::size_t end = std::min<std::size_t>(bytes.size(), 308 + number(304));
    for (std::size_t at = 312; at + 8 <= end; at += 8 + (number(at + 4) + 1U) / 2 * 2) {
        avi.samples[bytes[at + 1] == '1'].push_back(bytes.substr(at + 8, number(at + 4)));
    }
    avi.samples[1].resize(avi.samples[0].size());
    avi.indexed = end < bytes.size();
    avi.sound = bytes == ExpectedAvi(avi);
    return avi;
}

}  // namespace marvolen::test
