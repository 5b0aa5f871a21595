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

    // Interface thread: whether a signal has asked for the end, or the session ends, since the
    // object there is was made. For work that keeps the interface thread, and lets no window close
    // meanwhile: it cuts itself short then, and ends what it kept from ending.
    static bool IsEndRequested();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    void Drain();

    const std::function<void()> terminate;
    bool endRequested = false;
};

}  // namespace marvolen
