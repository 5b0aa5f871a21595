#pragma once

// CWnd: something that receives posted messages and timers on the interface thread. It is an
// interface without a widget; dialogs and controls add one (dialog.h, control.h).
//
// "Posted" means queued: a message is handled by a later turn of the event loop, never from within
// PostMessage. What is still queued when a window goes is dropped.

#include "platform/messages.h"

#include <cstdint>
#include <memory>

namespace marvolen {

class CWnd {
public:
    // Interface thread.
    CWnd();
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Any thread, while the window exists: queues a message for OnMessage.
    void PostMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam);

    // Interface thread: calls OnTimer(id) every milliseconds until KillTimer. Setting a running id
    // starts it anew with the new period. Periods beyond 2^31 - 1 ms (24 days) are that long.
    void SetTimer(std::uint32_t id, std::uint32_t milliseconds);

    // Interface thread: stops the timer; OnTimer(id) isn't called again. An unknown id is ignored.
    void KillTimer(std::uint32_t id);

protected:
    // Interface thread: one posted message. The base handles none.
    virtual void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam);

    // Interface thread: one tick of the timer id.
    virtual void OnTimer(std::uint32_t id);

private:
    class Receiver;
    const std::unique_ptr<Receiver> receiver;
};

}  // namespace marvolen
