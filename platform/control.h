#pragma once

// Controls: the child widgets of dialogs, each a CWnd with an id. Interface thread only.

#include "platform/window.h"

#include <QWidget>

namespace marvolen {

class CDialog;

// A static control: shows something and tells its dialog about clicks.
class CStatic : public QWidget, public CWnd {
    Q_OBJECT

public:
    // The parent owns the control. Its id and accessible name come with CDialog::AddControl.
    explicit CStatic(QWidget* parent = nullptr);

    // The control's id, 0 before it has one.
    int GetDlgCtrlID() const;

    // The dialog that contains this control, or null.
    CWnd* GetParentWnd() const;

protected:
    // Tells the dialog: WM_COMMAND with this control's id and code, handled before this returns.
    void NotifyParent(std::uint32_t code);

    void mousePressEvent(QMouseEvent* event) override;        // left button: STN_CLICKED
    void mouseDoubleClickEvent(QMouseEvent* event) override;  // left button: STN_DBLCLK

private:
    CDialog* FindDialog() const;
};

}  // namespace marvolen
