#include "app/marvolen_app.h"

#include "app/marvolen_dlg.h"
#include "app/run_statistics.h"
#include "config/settings_file.h"
#include "platform/dialog.h"
#include "platform/termination.h"
#include "platform/thread_priority.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QApplication>

namespace marvolen {

bool CMarvolenApp::InitInstance() {
    SetThreadPriority(ThreadPriority::TimeCritical);
    LoadSettings();
    if (!InitSockets()) {
        ShowMessageBox(nullptr, QStringLiteral("Marvolen"), LoadString(IDS_SOCKETS_FAILED));
        return false;
    }
    CMarvolenDlg window;
    mainWindow = &window;
    const auto statistics = RunStatistics::FromEnvironment(window);
    // Modal dialogs over the main window end first.
    const TerminationWatcher watcher([] { QApplication::closeAllWindows(); });
    window.DoModal();
    mainWindow = nullptr;
    return false;
}

int CMarvolenApp::ExitInstance() {
    SaveSettings();
    return CWinApp::ExitInstance();
}

int CMarvolenApp::OnDisplayGone() {
    if (mainWindow) mainWindow->CloseFiles();
    return CWinApp::OnDisplayGone();
}

}  // namespace marvolen
