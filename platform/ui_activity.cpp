#include "platform/ui_activity.h"

#include "platform/thread_annotations.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

using Clock = std::chrono::steady_clock;

Mutex g_postedLock;
std::uint64_t g_nextTurn GUARDED_BY(g_postedLock) = 0;
std::map<std::uint64_t, WaitingMessage::Kind> g_posted GUARDED_BY(g_postedLock);

std::set<const ArmedTimer*> g_timers;          // interface thread
std::vector<QPointer<QWidget>> g_awaitPaints;  // interface thread

std::uint64_t Count(WaitingMessage::Kind kind) {
    const MutexLock guard(g_postedLock);
    g_posted.emplace_hint(g_posted.end(), g_nextTurn, kind);
    return g_nextTurn++;
}

// Sees every event of the interface thread as it is handed out. The application owns it.
class EventWatch final : public QObject {
public:
    static EventWatch& OfApplication() {
        static QPointer<EventWatch> watch;
        if (!watch) watch = new EventWatch;
        return *watch;
    }

    bool IsInputComing() const { return Clock::now() - latestInput < kInputBurst; }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        // Input and paints come to widgets; other events are none of its business.
        if (!receiver->isWidgetType()) return false;
        const QEvent::Type type = event->type();
        if (IsInput(type)) latestInput = Clock::now();
        if (type == QEvent::Paint || type == QEvent::Hide) {
            std::erase_if(g_awaitPaints,
                          [=](const auto& widget) { return !widget || widget == receiver; });
        }
        return false;
    }

private:
    EventWatch() : QObject(QCoreApplication::instance()) {
        QCoreApplication::instance()->installEventFilter(this);
    }

    Clock::time_point latestInput = Clock::now() - kInputBurst;
};

}  // namespace

bool IsInput(QEvent::Type type) {
    switch (type) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
            return true;
        default:
            return false;
    }
}

bool IsUiBusy() {
    if (EventWatch::OfApplication().IsInputComing()) return true;
    {
        const MutexLock guard(g_postedLock);
        if (!g_posted.empty()) return g_posted.begin()->second == WaitingMessage::Kind::Command;
    }
    std::erase_if(g_awaitPaints,
                  [](const auto& widget) { return !widget || widget->visibleRegion().isEmpty(); });
    return !g_awaitPaints.empty() ||
           std::any_of(g_timers.begin(), g_timers.end(),
                       [](const ArmedTimer* timer) { return timer->IsDue(); });
}

void PostCommand(QObject& receiver, std::function<void()> command) {
    auto waiting = std::make_shared<WaitingMessage>(WaitingMessage::Kind::Command);
    QMetaObject::invokeMethod(
        &receiver,
        [waiting = std::move(waiting), command = std::move(command)]() mutable {
            waiting.reset();
            command();
        },
        Qt::QueuedConnection);
}

void RequestPaint(QWidget& widget, const QRect& area) {
    EventWatch::OfApplication();
    widget.update(area);
    const bool willBePainted = widget.isVisible() && !area.isEmpty();
    const bool isCounted =
        std::find(g_awaitPaints.begin(), g_awaitPaints.end(), &widget) != g_awaitPaints.end();
    if (willBePainted && !isCounted) g_awaitPaints.emplace_back(&widget);
}

WaitingMessage::WaitingMessage(Kind kind) : turn(Count(kind)) {}

WaitingMessage::~WaitingMessage() {
    const MutexLock guard(g_postedLock);
    g_posted.erase(turn);
}

ArmedTimer::ArmedTimer(std::chrono::milliseconds itsPeriod)
    : period(itsPeriod), due(Clock::now() + itsPeriod) {
    g_timers.insert(this);
}

ArmedTimer::~ArmedTimer() {
    g_timers.erase(this);
}

// As the toolkit does: a tick that comes a whole period late isn't made up for.
void ArmedTimer::Ticked() {
    due += period;
    if (IsDue()) due = Clock::now() + period;
}

}  // namespace marvolen
