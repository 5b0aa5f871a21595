#include "platform/application.h"

#include <QCoreApplication>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace marvolen {

int CWinApp::Run() {
    std::signal(SIGXFSZ, SIG_IGN);
    if (InitInstance()) exitCode = QCoreApplication::exec();
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
