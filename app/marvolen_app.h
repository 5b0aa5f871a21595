#pragma once

#include "platform/application.h"

namespace marvolen {

// The program: loads the channel table, makes the socket layer ready, runs the main window and
// writes the table back, whatever happened in between.
class CMarvolenApp : public CWinApp {
protected:
    // Always false: everything the user does happens within the main window's modal run.
    bool InitInstance() override;

    int ExitInstance() override;
};

}  // namespace marvolen
