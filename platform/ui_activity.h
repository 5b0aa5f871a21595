#pragma once

// Whether the interface thread has better things to do than to decode one more picture: what a
// preview asks before it takes the thread's time.
//
// Nobody can look into the toolkit's queues without taking from them. So what this program posts,
// arms and asks for itself is counted here, and the user's input is seen as it is handed out: it
// comes in bursts, and for a moment after some more of it counts as waiting.

#include <QEvent>
#include <QRect>

#include <chrono>
#include <cstdint>
#include <functional>

class QObject;
class QWidget;

namespace marvolen {

// How long after the user's latest input more of it counts as waiting.
inline constexpr std::chrono::milliseconds kInputBurst(50);

// Whether an event is the user's: a key, the mouse, a wheel, a touch or a pen.
bool IsInput(QEvent::Type type);

// Interface thread. Busy: input waits, or the first of what else waits is a command, a repaint that
// was asked for by RequestPaint, or a timer of a CWnd that is due. Posted messages come before
// repaints, and these before timers; behind a message that is no command nothing counts. Sees input
// from its first call on.
bool IsUiBusy();

// Any thread, while receiver exists: has command called by a later turn of receiver's event loop,
// as PostMessage does with a message. Dropped when receiver goes before.
void PostCommand(QObject& receiver, std::function<void()> command);

// Interface thread: widget.update(area), counted as waiting until the widget is painted or hidden.
void RequestPaint(QWidget& widget, const QRect& area);

// For who posts: counts one message as waiting while it lives. Any thread.
class WaitingMessage {
public:
    enum class Kind { Message, Command };
    explicit WaitingMessage(Kind kind);
    ~WaitingMessage();
    WaitingMessage(const WaitingMessage&) = delete;
    WaitingMessage& operator=(const WaitingMessage&) = delete;

private:
    const std::uint64_t turn;  // its place among all that were ever posted
};

// For who arms timers: one that ticks every period. Interface thread.
class ArmedTimer {
public:
    explicit ArmedTimer(std::chrono::milliseconds itsPeriod);
    ~ArmedTimer();
    ArmedTimer(const ArmedTimer&) = delete;
    ArmedTimer& operator=(const ArmedTimer&) = delete;

    void Ticked();
    bool IsDue() const { return std::chrono::steady_clock::now() >= due; }

private:
    const std::chrono::milliseconds period;
    std::chrono::steady_clock::time_point due;
};

}  // namespace marvolen
