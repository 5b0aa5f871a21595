#pragma once

// CWinApp: a program's start and end around its main window. The toolkit's application object must
// exist for as long as Run does. One Run at a time, on the interface thread.
//
// When the display goes away (its server ends, as at a logout) the toolkit ends the process from
// within its event loop, by exit: nothing returns, nothing is destroyed. Run arranges for
// OnDisplayGone to be called even so.

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

    // Interface thread, from within exit: saves what ExitInstance and the end of the main window
    // would have saved, and returns the process's exit status. There is no event loop and no
    // display any more; nothing may be shown or painted. It has ten seconds, then the process ends
    // as it is. The base calls ExitInstance.
    virtual int OnDisplayGone();

    // Makes the socket layer ready for the whole program: a peer that goes away is an error of the
    // call, never a signal. False when the system has no IPv4 sockets for us.
    virtual bool InitSockets();

private:
    static void EndInOrder();

    int exitCode = 0;
};

}  // namespace marvolen
