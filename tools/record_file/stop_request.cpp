#include "tools/record_file/stop_request.h"

#include <cstddef>

namespace marvolen {
namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t g_requested = 0;

extern "C" void OnStopSignal(int) {
    g_requested = 1;
}

}  // namespace

StopRequest::StopRequest() {
    g_requested = 0;
    struct sigaction action {};
    action.sa_handler = OnStopSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t k = 0; k < kSignals.size(); ++k) {
        sigaction(kSignals[k], nullptr, &formerActions[k]);
        if (formerActions[k].sa_handler != SIG_IGN) sigaction(kSignals[k], &action, nullptr);
    }
}

StopRequest::~StopRequest() {
    for (std::size_t k = 0; k < kSignals.size(); ++k) {
        sigaction(kSignals[k], &formerActions[k], nullptr);
    }
}

bool StopRequest::IsRequested() const {
    return g_requested != 0;
}

}  // namespace marvolen
