#include "platform/window.h"

#include "platform/ui_activity.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>

#include <algorithm>
#include <atomic>
#include <limits>
#include <map>
#include <optional>

namespace marvolen {
namespace {

constexpr QEvent::Type kMessageEvent = QEvent::User;

// One posted message on its way.
class MessageEvent final : public QEvent {
public:
    MessageEvent(std::uint32_t itsMessage, WPARAM itsWParam, LPARAM itsLParam)
        : QEvent(kMessageEvent),
          message(itsMessage),
          wParam(itsWParam),
          lParam(itsLParam),
          waiting(std::in_place, WaitingMessage::Kind::Message) {}

    const std::uint32_t message;
    const WPARAM wParam;
    const LPARAM lParam;
    std::optional<WaitingMessage> waiting;
};

}  // namespace

// The toolkit's side of a window.
class CWnd::Receiver final : public QObject {
public:
    explicit Receiver(CWnd& target) : window(target) {}

    // The toolkit drops what is still on its way; it, too, must be known to be complete.
    ~Receiver() override { SeePosted(); }

    // An event is complete before it is counted, and looked at after the count is. So it is even
    // where the toolkit's own locking isn't seen (ThreadSanitizer).
    void Post(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
        auto event = std::make_unique<MessageEvent>(message, wParam, lParam);
        posted.fetch_add(1, std::memory_order_release);
        QCoreApplication::postEvent(this, event.release());
    }

    void Set(std::uint32_t id, std::uint32_t milliseconds) {
        Kill(id);
        constexpr std::uint32_t kLongest = std::numeric_limits<int>::max();
        const int period = static_cast<int>(std::min(milliseconds, kLongest));
        timers.try_emplace(id, startTimer(period, Qt::PreciseTimer),
                           std::chrono::milliseconds(period));
    }

    void Kill(std::uint32_t id) {
        const auto found = timers.find(id);
        if (found == timers.end()) return;
        killTimer(found->second.toolkitId);
        timers.erase(found);
    }

protected:
    bool event(QEvent* event) override {
        SeePosted();
        if (event->type() != kMessageEvent) return QObject::event(event);
        auto& posting = static_cast<MessageEvent&>(*event);
        posting.waiting.reset();
        window.OnMessage(posting.message, posting.wParam, posting.lParam);
        return true;
    }

    void timerEvent(QTimerEvent* event) override {
        for (auto& [id, timer] : timers) {
            if (timer.toolkitId != event->timerId()) continue;
            timer.armed.Ticked();
            window.OnTimer(id);
            return;
        }
    }

private:
    struct Timer {
        Timer(int itsToolkitId, std::chrono::milliseconds period)
            : toolkitId(itsToolkitId), armed(period) {}
        const int toolkitId;
        ArmedTimer armed;
    };

    void SeePosted() const { static_cast<void>(posted.load(std::memory_order_acquire)); }

    CWnd& window;
    std::map<std::uint32_t, Timer> timers;
    std::atomic<std::size_t> posted = 0;
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
