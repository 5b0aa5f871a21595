#include "jpeg/entropy_state.h"

#include "jpeg/marker_reader.h"

namespace marvolen {
namespace {

// How far a restart marker is searched.
constexpr int kRestartSearchBytes = 1536;

}  // namespace

void EntropyState::FindRestartMarker(JpegInput& input) {
    int readsLeft = kRestartSearchBytes;
    const auto read = [&] {
        if (readsLeft-- == 0) Fail(kJpegErrorRestart);
        return input.ReadRaw();
    };
    while (read() != 0xFF) {
    }
    int code = 0xFF;
    while (code == 0xFF) code = read();
    if (code != kMarkerRst0 + expectedRestart) Fail(kJpegErrorRestart);
    dcPredictions.fill(0);
    endOfBandRun = 0;
    mcusToRestart = restartInterval;
    expectedRestart = (expectedRestart + 1) % 8;
}

}  // namespace marvolen
