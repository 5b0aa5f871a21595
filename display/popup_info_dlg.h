#pragma once

// CPopupInfoDlg: the small window beside the pane under the mouse that repeats the channel's
// number, name, time and status marks. It never takes the focus. Interface thread only.

#include "display/status_marks.h"
#include "platform/dialog.h"

#include <memory>

class QLabel;
class QLineEdit;

namespace marvolen {

class VideoPane;

class CPopupInfoDlg : public CDialog {
    Q_OBJECT

public:
    // A hidden pop-up of pane, which must outlive every operation but destruction. The parent owns
    // the pop-up.
    CPopupInfoDlg(const VideoPane& itsPane, QWidget* parent);

    // Fills the pop-up with what its pane shows now. Touches only what has changed, so it may run
    // with every picture.
    void RefreshPopup();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct MarkControl {
        QLabel* icon = nullptr;
        qreal ratio = 0;  // device pixel ratio of the mark it shows, 0 while it shows none
    };

    QLineEdit* AddField(int row, const QString& label, int id, const QString& longest);
    void AddMark(MarkControl& control, int row, int id, const QString& accessibleName);
    void ShowMark(MarkControl& control, int mark, bool shown);

    const VideoPane& pane;
    const std::shared_ptr<StatusMarks> marks;
    QLineEdit* channel;
    QLineEdit* name;
    QLineEdit* time;
    MarkControl connected;
    MarkControl recording;
};

}  // namespace marvolen
