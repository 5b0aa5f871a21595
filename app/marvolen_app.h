#pragma once

#include "platform/application.h"

namespace marvolen {

class CMarvolenDlg;

// The program: loads the channel table, makes the socket layer ready, runs the main window and
// writes the table back, whatever happened in between.
class CMarvolenApp : public CWinApp {
protected:
    // Always false: everything the user does happens within the main window's modal run.
    bool InitInstance() override;

    int ExitInstance() override;

    // Closes the record files as the end of the main window does.
    int OnDisplayGone() override;

private:
    CMarvolenDlg* mainWindow = nullptr;  // while it runs
};

}  // namespace marvolen
