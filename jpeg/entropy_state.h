#pragma once

#include "jpeg/jpeg_error.h"
#include "jpeg/jpeg_frame.h"
#include "jpeg/jpeg_input.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace marvolen {

// What entropy decoding carries from block to block within a scan, and drops at each restart
// (ITU-T T.81, F.2.1.3 and E.2.4).
class EntropyState {
public:
    // Back to the beginning of a scan with a restart marker after every newInterval MCUs (0:
    // none at all). The first marker is RST0.
    void BeginScan(int newInterval) {
        dcPredictions.fill(0);
        endOfBandRun = 0;
        restartInterval = newInterval;
        mcusToRestart = newInterval;
        expectedRestart = 0;
    }

    // Call before each MCU: consumes the restart marker when one is due, and primes the reader
    // behind it. Throws JpegFailure -228 when it isn't there or isn't the expected one.
    template <class BitReader>
    void BeginMcu(JpegInput& input, BitReader& reader) {
        reader.BeginMcu();
        if (restartInterval == 0) return;
        if (mcusToRestart == 0) {
            reader.Leave();
            FindRestartMarker(input);
            reader.PrimeForScan();
        }
        --mcusToRestart;
    }

    bool HasRestarts() const { return restartInterval != 0; }

    // Adds difference to the prediction of a frame component and returns it. Corrupt data may
    // let it wrap.
    std::int32_t AddToPrediction(std::size_t component, int difference) {
        dcPredictions[component] += static_cast<std::uint32_t>(difference);
        return static_cast<std::int32_t>(dcPredictions[component]);
    }

    // Blocks of a progressive AC scan that are still to be skipped.
    std::uint32_t endOfBandRun = 0;

private:
    void FindRestartMarker(JpegInput& input);

    std::array<std::uint32_t, kMaxJpegComponents> dcPredictions{};
    int restartInterval = 0;
    int mcusToRestart = 0;
    int expectedRestart = 0;
};

}  // namespace marvolen
