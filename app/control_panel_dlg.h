#pragma once

// The control panel along the main window's right edge. It decides nothing: each command of its
// controls is a signal. Interface thread only.

#include "app/paging.h"
#include "app/sort_list_ctrl.h"
#include "platform/control.h"
#include "platform/dialog.h"

class QCheckBox;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QPushButton;

namespace marvolen {

// The status box: the program's logo at its top-left corner, to be clicked.
class CLogoBox final : public CStatic {
    Q_OBJECT

public:
    explicit CLogoBox(QWidget* parent);

    QSize sizeHint() const override;
    QAccessible::Role AccessibleRole() const override { return QAccessible::Button; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // Space and Enter are clicks
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

class CControlPanelDlg final : public CDialog {
    Q_OBJECT

public:
    // A child of the main window, which is told where the mouse moves (WM_POPUPPANE).
    explicit CControlPanelDlg(CDialog* itsMainWindow);

    // Puts the arrows on "P" and "N", in the colours and size of the buttons' texts.
    void LoadPageIcons();

    // The view whose button is checked.
    ViewMode GetViewMode() const;

    // Checks a view's button without a command.
    void CheckViewButton(ViewMode view);

    // Shows the page text and enables "P" and "N" as the pages allow.
    void ShowPaging(const Paging& paging);

    // "Stop" while the selected channel records, else "Start".
    void ShowRecording(bool recording);

    // Whether the panes' pop-ups are allowed.
    bool IsPopupEnabled() const;

    CSortListCtrl& MessageList() const { return *messageList; }

    // The size the panel keeps: that of its template in the dialog's font, wider where its texts
    // need it, and no higher than maxHeight as long as its controls fit.
    QSize PanelSize(int maxHeight) const;

Q_SIGNALS:
    // The user's commands, emitted within the click that gives them. Whoever acts on one takes it
    // queued: it may open a dialog, hide the control or end the program.
    void toggleRecordingRequested();  // "Start", "Stop": of the selected channel
    void stopAllRequested();
    void startAllRequested();
    void aboutRequested();
    void settingRequested();
    void playbackRequested();
    void cleanLogRequested();
    void saveLogRequested();
    void turnPageRequested(int step);  // -1, +1
    void viewRequested(ViewMode view);
    void enablePopupRequested(bool on);
    void exitRequested();

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QGroupBox* MakeRecordingGroup();
    QGroupBox* MakeManagementGroup();
    QGroupBox* MakeMessageGroup();
    QGroupBox* MakePageGroup();
    QHBoxLayout* MakePageRow();
    QHBoxLayout* MakeViewRow();
    QPushButton* MakeButton(int id, const QString& text, const QString& accessibleName,
                            void (CControlPanelDlg::*command)());
    QPushButton* MakePlainButton(int id, const QString& text, const QString& accessibleName);

    CDialog& mainWindow;
    QPushButton* recordToggle = nullptr;
    QPushButton* nextPage = nullptr;
    QPushButton* previousPage = nullptr;
    QPushButton* viewButtons[3] = {};  // 1, 4, 16
    QLabel* pageText = nullptr;
    QCheckBox* enablePopup = nullptr;
    CSortListCtrl* messageList = nullptr;
};

}  // namespace marvolen
