#pragma once

// CWinApp: a program's start and end around its main window. The toolkit's application object must
// exist for as long as Run does.

namespace marvolen {

class CWinApp {
public:
    virtual ~CWinApp() = default;

    // Runs the program: InitInstance, an event loop if that asks for one, ExitInstance in every
    // case. Returns the process's exit status. A limit on file sizes is an error of the write that
    // meets it, as a full disk is, never a signal.
    int Run();

protected:
    // Starts the program. False: end it without an event loop.
    virtual bool InitInstance() = 0;

    // Ends the program and returns its exit status. The base returns 0, or the event loop's status.
    virtual int ExitInstance();

    // Makes the socket layer ready for the whole program: a peer that goes away is an error of the
    // call, never a signal. False when the system has no IPv4 sockets for us.
    virtual bool InitSockets();

private:
    int exitCode = 0;
};

}  // namespace marvolen
