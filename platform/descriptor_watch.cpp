#include "platform/descriptor_watch.h"

#include <QEvent>
#include <QSocketNotifier>

#include <utility>

namespace marvolen {

// Overrides event() rather than connecting to activated(): it has to know whether it is running.
class DescriptorWatch::Notifier : public QSocketNotifier {
public:
    Notifier(int descriptor, Type type, std::function<void()> function)
        : QSocketNotifier(descriptor, type), ready(std::move(function)) {}

    // Ends the notifier: at once, or, from within its own callback, once that has returned.
    void Retire() {
        setEnabled(false);
        retired = true;
        if (running == 0) delete this;
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::SockAct) return QSocketNotifier::event(event);
        // A notification may have been on its way when the watch was disabled.
        if (retired || !isEnabled()) return true;
        ++running;
        ready();
        // As with a slot that deletes its notifier, the toolkit doesn't look at it afterwards.
        if (--running == 0 && retired) delete this;
        return true;
    }

private:
    const std::function<void()> ready;
    int running = 0;  // more than 1 when the callback runs an event loop of its own
    bool retired = false;
};

DescriptorWatch::DescriptorWatch(int descriptor, Readiness readiness, std::function<void()> ready)
    : notifier(new Notifier(
          descriptor, readiness == Readiness::Read ? QSocketNotifier::Read : QSocketNotifier::Write,
          std::move(ready))) {}

DescriptorWatch::~DescriptorWatch() {
    notifier->Retire();
}

void DescriptorWatch::Disable() {
    notifier->setEnabled(false);
}

}  // namespace marvolen
