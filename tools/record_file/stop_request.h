#pragma once

#include <array>
#include <csignal>

namespace marvolen {

// Notes the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) instead of ending it, as
// long as the object lives. A signal that was ignored before stays ignored. One object at a time.
class StopRequest {
public:
    StopRequest();
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    bool IsRequested() const;

private:
    std::array<struct sigaction, 3> formerActions;
};

}  // namespace marvolen
