#pragma once

// The control panel along the main window's right edge. It decides nothing: every command of its
// controls is posted on to the main window under the same id. Interface thread only.

#include "app/paging.h"
#include "app/sort_list_ctrl.h"
#include "platform/control.h"
#include "platform/dialog.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace marvolen {

// The status box: the program's logo at its top-left corner. A click is a command.
class CLogoBox final : public CStatic {
    Q_OBJECT

public:
    explicit CLogoBox(QWidget* parent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // Space and Enter are clicks
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

class CControlPanelDlg final : public CDialog {
    Q_OBJECT

public:
    // A child of the main window, which receives its commands.
    explicit CControlPanelDlg(CDialog* mainWindow);

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

protected:
    void OnCommand(WPARAM wParam, LPARAM lParam) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QGroupBox* MakeRecordingGroup();
    QGroupBox* MakeManagementGroup();
    QGroupBox* MakeMessageGroup();
    QGroupBox* MakePageGroup();
    QPushButton* MakeButton(int id, const QString& text, const QString& accessibleName);

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
