#include "platform/window.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>

#include <algorithm>
#include <atomic>
#include <deque>
#include <limits>
#include <map>
#include <mutex>

namespace marvolen {

// The toolkit's side of a window. Messages wait in a queue of our own; each is announced by one
// queued toolkit event, so they keep their order among the toolkit's other events.
class CWnd::Receiver final : public QObject {
public:
    explicit Receiver(CWnd& target) : window(target) {}

    // The announcement is made before `waiting` is counted up, and read after that is, so that it
    // is known to be complete even where the toolkit's own locking isn't seen (ThreadSanitizer).
    void Post(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
        auto announcement = std::make_unique<QEvent>(QEvent::User);
        {
            const std::lock_guard guard(mutex);
            queue.push_back({message, wParam, lParam});
        }
        waiting.fetch_add(1, std::memory_order_release);
        QCoreApplication::postEvent(this, announcement.release());
    }

    void Set(std::uint32_t id, std::uint32_t milliseconds) {
        Kill(id);
        constexpr std::uint32_t kLongest = std::numeric_limits<int>::max();
        const int period = static_cast<int>(std::min(milliseconds, kLongest));
        timers[id] = startTimer(period, Qt::PreciseTimer);
    }

    void Kill(std::uint32_t id) {
        const auto found = timers.find(id);
        if (found == timers.end()) return;
        killTimer(found->second);
        timers.erase(found);
    }

protected:
    bool event(QEvent* event) override {
        const bool announced =
            waiting.load(std::memory_order_acquire) > 0 && event->type() == QEvent::User;
        if (!announced) return QObject::event(event);
        waiting.fetch_sub(1, std::memory_order_relaxed);
        Message next;
        {
            const std::lock_guard guard(mutex);
            next = queue.front();
            queue.pop_front();
        }
        window.OnMessage(next.message, next.wParam, next.lParam);
        return true;
    }

    void timerEvent(QTimerEvent* event) override {
        for (const auto& [id, timer] : timers) {
            if (timer != event->timerId()) continue;
            window.OnTimer(id);
            return;
        }
    }

private:
    struct Message {
        std::uint32_t message = 0;
        WPARAM wParam = 0;
        LPARAM lParam = 0;
    };

    CWnd& window;
    std::map<std::uint32_t, int> timers;  // our id to the toolkit's

    std::atomic<std::size_t> waiting = 0;  // announced and not yet taken
    std::mutex mutex;
    std::deque<Message> queue;  // guarded by mutex
};

CWnd::CWnd() : receiver(std::make_unique<Receiver>(*this)) {}

CWnd::~CWnd() = default;

void CWnd::PostMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    receiver->Post(message, wParam, lParam);
}

void CWnd::SetTimer(std::uint32_t id, std::uint32_t milliseconds) {
    receiver->Set(id, milliseconds);
}

void CWnd::KillTimer(std::uint32_t id) {
    receiver->Kill(id);
}

void CWnd::OnMessage(std::uint32_t, WPARAM, LPARAM) {}

void CWnd::OnTimer(std::uint32_t) {}

}  // namespace marvolen
