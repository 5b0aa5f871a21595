#pragma once

// Controls: the child widgets of dialogs, each a CWnd with an id. Interface thread only.

#include "platform/window.h"

#include <QAccessible>
#include <QWidget>

namespace marvolen {

class CDialog;

// A static control: paints itself and says when it is clicked. Assistive tools see its accessible
// name and description (QWidget's properties), the role and state it gives itself, and, where
// somebody listens to clicked, a press action.
class CStatic : public QWidget, public CWnd {
    Q_OBJECT

public:
    // The parent owns the control. Its id and accessible name come with CDialog::AddControl.
    explicit CStatic(QWidget* parent = nullptr);

    // The dialog that contains this control, or null.
    CWnd* GetParentWnd() const;

    // What a click of the left button does: emits clicked.
    void Press();

    // Whether anybody is connected to clicked.
    bool IsPressable() const;

    // What assistive tools are told this is. The base: a picture.
    virtual QAccessible::Role AccessibleRole() const;

    // Sets in state what holds beside the usual (focus, visibility). The base: nothing.
    virtual void AddAccessibleState(QAccessible::State& state) const;

Q_SIGNALS:
    // The left button went down on the control, or it was pressed by key or assistive tool.
    void clicked();

    // The left button went down for the second time.
    void doubleClicked();

protected:
    // Tells assistive tools that what AddAccessibleState says has changed: the states set in
    // changed.
    void NotifyAccessibleState(QAccessible::State changed);

    void mousePressEvent(QMouseEvent* event) override;        // left button: clicked
    void mouseDoubleClickEvent(QMouseEvent* event) override;  // left button: doubleClicked
};

}  // namespace marvolen
