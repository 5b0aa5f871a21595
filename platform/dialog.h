#pragma once

// Dialogs: windows of controls that are known by their ids. Interface thread only.
//
// What a control does is told by the toolkit's signals. Every control carries its id as object name
// ("1000") and an accessible name, for tests, automation and assistive tools.

#include "platform/window.h"

#include <QDialog>
#include <QString>

#include <vector>

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

    // Runs the dialog until it ends: OnInitDialog, its own event loop, OnModalEnd. Returns what
    // EndDialog was given; given from OnInitDialog the dialog stays unseen. A dialog object is
    // made for one run; a further run goes on with the controls as they are.
    //
    // Modal over its parent; without one, other windows stay usable. A run is ended by EndDialog,
    // never by hide().
    int DoModal();

    // Shows the dialog without a loop of its own (a modeless or child dialog) after OnInitDialog,
    // unless that ended it.
    void CreateModeless();

    // Shows the dialog as a part of its parent, without a window of its own, after OnInitDialog.
    // Escape isn't its own: the dialog around it gets the key.
    void CreateChild();

    // Ends a modal run with this result, or hides a modeless dialog.
    void EndDialog(int result);

    // Gives a descendant its id and accessible name.
    void AddControl(QWidget* control, int id, const QString& accessibleName);

    // The control of this id, null when there is none (or, with a type, when it is of another).
    // The controls of dialogs and windows inside this one are not among its own.
    QWidget* GetDlgItem(int id) const;
    template <typename Control>
    Control* GetDlgItem(int id) const {
        return qobject_cast<Control*>(GetDlgItem(id));
    }

    // A size in dialog units, in pixels: a unit is a quarter of the dialog font's average character
    // width, and an eighth of its height.
    QSize MapDialogUnits(QSize units) const;

    // A modal box with this text, an OK button and the title of the window that this is or is in.
    void MessageBox(const QString& text);

    // The window's own menu, which a right click on the window opens: the usual window commands and
    // what is appended here. A chosen item's command comes as systemCommand.
    void AppendSystemMenu(int command, const QString& text);
    void AppendSystemMenuSeparator();

    // The toolkit's ends: accept is OnOK; reject, which Escape and the close box call, OnCancel.
    void accept() override;
    void reject() override;

Q_SIGNALS:
    // An item of the window's menu was chosen; the menu is closed already. The command's low four
    // bits are cleared.
    void systemCommand(int command);

protected:
    // Once, before the dialog shows for the first time. May end it.
    virtual void OnInitDialog();

    // End the dialog with IDOK or IDCANCEL, unless a derived dialog decides otherwise.
    virtual void OnOK();
    virtual void OnCancel();

    // A modal run ends with this result: the last thing before DoModal returns to its caller. The
    // base does nothing.
    virtual void OnModalEnd(int result);

    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // Enter on a focused button is a click

private:
    bool Initialise();
    int RunLoop();
    void ShowSystemMenu(const QPoint& globalPosition);

    struct SystemMenuItem {
        int command = 0;  // 0: a separator
        QString text;
    };

    bool initialised = false;
    bool ended = false;  // by EndDialog, since OnInitDialog began
    std::vector<SystemMenuItem> systemMenu;
};

// A modal message box over parent (may be null: no window yet) with an OK button.
void ShowMessageBox(QWidget* parent, const QString& title, const QString& text);

}  // namespace marvolen
