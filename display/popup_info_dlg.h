#pragma once

// CPopupInfoDlg: the small window beside the pane under the mouse that repeats the channel's
// number, name, time and status marks. It takes neither the focus nor the mouse, which stays with
// what lies below. Interface thread only.

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

    // Its natural size: that of its dialog template, or what its texts need in this font.
    QSize sizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct MarkControl {
        QLabel* icon = nullptr;
        qreal ratio = 0;  // device pixel ratio of the mark it shows, 0 while it shows none
    };

    QLineEdit* AddField(int row, const QString& label, int id);
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
