#pragma once

// Dialogs: windows of controls that are known by their ids. Interface thread only.
//
// A control's notifications reach its dialog as commands: WM_COMMAND with the control's id in the
// low half of wParam and the notification code in the high half (messages.h). Every control carries
// its id as object name ("1000") and an accessible name, for tests, automation and assistive tools.

#include "platform/window.h"

#include <QDialog>
#include <QString>

namespace marvolen {

// Command ids every dialog knows.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

// The id a control was given by CDialog::AddControl, 0 for none.
int ControlId(const QWidget& control);

class CDialog : public QDialog, public CWnd {
    Q_OBJECT

public:
    explicit CDialog(QWidget* parent = nullptr);

    // Runs the dialog until it ends: OnInitDialog, then its own event loop. Returns what EndDialog
    // was given.
    int DoModal();

    // Shows the dialog without a loop of its own (a modeless or child dialog) after OnInitDialog.
    void CreateModeless();

    // Ends a modal run with this result, or hides a modeless dialog.
    void EndDialog(int result);

    // Gives a descendant its id and accessible name and routes its notifications to OnCommand:
    // buttons report BN_CLICKED.
    void AddControl(QWidget* control, int id, const QString& accessibleName);

    // The control of this id, null when there is none (or, with a type, when it is of another).
    QWidget* GetDlgItem(int id) const;
    template <typename Control>
    Control* GetDlgItem(int id) const {
        return qobject_cast<Control*>(GetDlgItem(id));
    }

    // Handles a control's notification now. lParam of the command is the control.
    void SendCommand(QWidget& control, std::uint32_t code);

    // A modal box with this text, the window's title and an OK button.
    void MessageBox(const QString& text);

    // Closing by Escape or the close box is the command IDCANCEL.
    void reject() override;

protected:
    // Before the dialog shows for the first time.
    virtual void OnInitDialog();

    // A command. The base ends the dialog on IDOK and IDCANCEL with that id.
    virtual void OnCommand(WPARAM wParam, LPARAM lParam);

    // Posted WM_COMMAND messages are commands too.
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override;

private:
    void Initialise();

    bool initialised = false;
};

// A modal message box over parent (may be null: no window yet) with an OK button.
void ShowMessageBox(QWidget* parent, const QString& title, const QString& text);

}  // namespace marvolen
