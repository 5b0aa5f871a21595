#pragma once

// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP: shutdown, logout, Ctrl+C)
// into a call on the interface thread, so that recordings and settings are written as on any exit.

#include <QObject>

#include <functional>

namespace marvolen {

class TerminationWatcher final : public QObject {
public:
    // Interface thread. Calls onTerminate from the event loop for each signal received while the
    // object lives; the destructor gives the signals their former meaning back. A signal that is
    // ignored when the object is made stays ignored. One object at a time.
    explicit TerminationWatcher(std::function<void()> onTerminate);
    ~TerminationWatcher() override;

private:
    void Drain();

    const std::function<void()> terminate;
};

}  // namespace marvolen
