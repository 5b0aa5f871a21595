#include "jpeg/progressive_scan.h"

#include "jpeg/jpeg_error.h"

namespace marvolen {
namespace {

// Filler that a sound scan may read behind its data, and behind each restart interval: the bit
// reader looks this many bytes ahead.
constexpr std::uint64_t kLookAheadBytes = 4;

std::uint64_t McusOf(const JpegScan& scan) {
    return static_cast<std::uint64_t>(scan.mcuRows) * static_cast<std::uint64_t>(scan.mcusPerRow);
}

}  // namespace

ProgressiveProcedure ProcedureOf(const JpegScan& scan) {
    const bool dcScan = scan.spectralStart == 0;
    const bool refinement = scan.approximationHigh != 0;
    if (scan.spectralEnd < scan.spectralStart || scan.spectralEnd > 63 ||
        (dcScan && scan.spectralEnd != 0) || (!dcScan && scan.componentCount != 1)) {
        Fail(kJpegErrorSpectralSelection);
    }
    if (refinement && scan.approximationLow != scan.approximationHigh - 1) {
        Fail(kJpegErrorSuccessiveApproximation);
    }
    using enum ProgressiveProcedure;
    if (dcScan) return refinement ? DcRefine : DcFirst;
    return refinement ? AcRefine : AcFirst;
}

void ProgressiveLimits::BeginScan(const JpegScan& scan) {
    blocksVisited += McusOf(scan) * static_cast<std::uint64_t>(scan.blocksPerMcu);
    if (blocksVisited > kMaxBlocks) Fail(kJpegErrorCorrupt);
}

void ProgressiveLimits::EndScan(const JpegScan& scan, int restartInterval,
                                std::uint64_t fillerBytes) {
    const std::uint64_t restarts =
        restartInterval == 0 ? 0 : (McusOf(scan) - 1) / static_cast<std::uint64_t>(restartInterval);
    if (fillerBytes > kLookAheadBytes * (1 + restarts) && ++dryScans > kMaxDryScans) {
        Fail(kJpegErrorCorrupt);
    }
}

}  // namespace marvolen
