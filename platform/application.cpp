#include "platform/application.h"

#include <QCoreApplication>
#include <QThread>

#include <csignal>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace marvolen {
namespace {

constexpr unsigned kLongestEnd = 10;  // seconds

CWinApp* g_running = nullptr;  // between begin and end of its Run

}  // namespace

int CWinApp::Run() {
    std::signal(SIGXFSZ, SIG_IGN);
    g_running = this;
    // Registered by the first turn of the event loop, it is called before the statics that the
    // start has made are destroyed.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [] { std::atexit(EndInOrder); }, Qt::QueuedConnection);
    if (InitInstance()) exitCode = QCoreApplication::exec();
    g_running = nullptr;
    return ExitInstance();
}

// Called by exit. The process ends here when the program was still running: the threads go on, and
// destroying statics under them could only do harm.
void CWinApp::EndInOrder() {
    CWinApp* const app = std::exchange(g_running, nullptr);
    const QCoreApplication* const toolkit = QCoreApplication::instance();
    if (!app || !toolkit || toolkit->thread() != QThread::currentThread()) return;
    alarm(kLongestEnd);
    _exit(app->OnDisplayGone());
}

int CWinApp::OnDisplayGone() {
    return ExitInstance();
}

int CWinApp::ExitInstance() {
    return exitCode;
}

bool CWinApp::InitSockets() {
    std::signal(SIGPIPE, SIG_IGN);
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (probe < 0) return false;
    close(probe);
    return true;
}

}  // namespace marvolen
