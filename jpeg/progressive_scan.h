#pragma once

#include "jpeg/jpeg_frame.h"

#include <cstdint>

namespace marvolen {

// The run of a symbol without value that isn't an end of band.
inline constexpr int kLongRun = 15;

// The four procedures of ITU-T T.81, G.1.2.
enum class ProgressiveProcedure { DcFirst, DcRefine, AcFirst, AcRefine };

// The procedure of a scan. Throws JpegFailure: -230 for spectral selection that none has, -231 for
// a refinement of another bit than the next one.
ProgressiveProcedure ProcedureOf(const JpegScan& scan);

// A coefficient in its place: value x 2^bits, in 16 bits.
constexpr std::int16_t ShiftLeft(std::int32_t value, int bits) {
    return static_cast<std::int16_t>(static_cast<std::uint32_t>(value) << bits);
}

// What the scans of a picture may cost together. A scan of a few bytes visits every block of the
// picture, so it is scans that would make a hostile frame costly.
class ProgressiveLimits {
public:
    // Blocks that the scans of a picture may visit: 64 times those of the largest gray one.
    static constexpr std::uint64_t kMaxBlocks = 1U << 26;
    // Scans that may be dry, that is, run on behind their data: an encoder makes none, a picture
    // that was cut off has one.
    static constexpr int kMaxDryScans = 16;

    // Call before a scan is decoded. Throws JpegFailure -227 beyond kMaxBlocks.
    void BeginScan(const JpegScan& scan);

    // Call behind a scan that took so many filler bytes. Throws JpegFailure -227 beyond
    // kMaxDryScans.
    void EndScan(const JpegScan& scan, int restartInterval, std::uint64_t fillerBytes);

private:
    std::uint64_t blocksVisited = 0;  // by all scans so far
    int dryScans = 0;
};

}  // namespace marvolen
