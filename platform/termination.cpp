#include "platform/termination.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace marvolen {
namespace {

constexpr std::array<int, 3> kSignals = {SIGTERM, SIGINT, SIGHUP};

// A signal handler may only make async-signal-safe calls; it reaches the event loop through this.
volatile sig_atomic_t g_signalEvent = -1;
std::array<struct sigaction, kSignals.size()> g_formerActions;

const TerminationWatcher* g_watcher = nullptr;  // the one there is; interface thread

extern "C" void OnTerminationSignal(int) {
    const int savedErrno = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(g_signalEvent, &one, sizeof one);
    errno = savedErrno;
}

}  // namespace

TerminationWatcher::TerminationWatcher(std::function<void()> onTerminate)
    : terminate(std::move(onTerminate)) {
    g_watcher = this;
    QCoreApplication::instance()->installEventFilter(this);
    g_signalEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (g_signalEvent < 0) return;
    auto* notifier = new QSocketNotifier(g_signalEvent, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { Drain(); });
    struct sigaction action {};
    action.sa_handler = OnTerminationSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t k = 0; k < kSignals.size(); ++k) {
        sigaction(kSignals[k], nullptr, &g_formerActions[k]);
        // A signal that whoever started the program had it ignore (nohup, a background job of a
        // shell) stays ignored.
        if (g_formerActions[k].sa_handler != SIG_IGN) sigaction(kSignals[k], &action, nullptr);
    }
}

TerminationWatcher::~TerminationWatcher() {
    g_watcher = nullptr;
    if (g_signalEvent < 0) return;
    for (std::size_t k = 0; k < kSignals.size(); ++k) {
        sigaction(kSignals[k], &g_formerActions[k], nullptr);
    }
    // The notifier goes before its descriptor.
    qDeleteAll(children());
    close(g_signalEvent);
    g_signalEvent = -1;
}

void TerminationWatcher::Drain() {
    std::uint64_t count = 0;
    if (read(g_signalEvent, &count, sizeof count) != sizeof count) return;
    endRequested = true;
    terminate();
}

bool TerminationWatcher::IsEndRequested() {
    return g_watcher && g_watcher->endRequested;
}

// The toolkit's own request, with which it closes all windows: the session's manager ends us.
bool TerminationWatcher::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Quit) endRequested = true;
    return false;
}

}  // namespace marvolen
