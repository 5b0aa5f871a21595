#pragma once

// VideoPane: shows one live channel.
//
// A black title strip with the channel's name, the time of the latest picture and two status marks;
// below it the picture, stretched over the rest of the pane; around both a two-pixel frame that is
// red while the pane is selected. Geometry is in device-independent pixels and stands in
// "display/pane_geometry.h".
//
// The pane sits in the middle of its channel's chain and forwards every frame. Its pictures are
// decoded and scaled by a drawing thread of its own ("display/drawing_thread.h"); pictures that
// come while that thread is busy are not displayed, only forwarded. The video area is black from
// Open, Close, a change of size or visibility until the next picture.
//
// What the pane tells its parent, which must be a CDialog: WM_COMMAND with STN_DBLCLK for a double
// click (at once), WM_POPUPPANE with wParam index for a mouse move over the pane (posted).
//
// Interface thread only.

#include "display/drawing_thread.h"
#include "display/pane_geometry.h"
#include "display/pane_status.h"
#include "display/status_marks.h"
#include "display/time_gate.h"
#include "net/frame_receiver.h"
#include "platform/control.h"

#include <QFont>
#include <QPointer>
#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace marvolen {

class CPopupInfoDlg;

class VideoPane : public CStatic, public FrameReceiver {
    Q_OBJECT

public:
    // A closed, unselected, black pane. Starts its drawing thread. The parent owns the pane.
    // decode takes the decoder's place, for tests.
    explicit VideoPane(QWidget* parent, DecodeFunction decode = DecodeJpegFrame);

    // Ends the drawing thread, after its decode in progress if there is one.
    ~VideoPane() override;

    // Prepares the pane for a channel: its name (in the system's narrow encoding) and the
    // milliseconds by which a stamp must exceed the one shown to take its place. The status flags
    // stay. False when the pane can't draw; it then shows no pictures.
    bool Open(std::string_view newName, std::uint32_t newMinInterval);

    // Releases the picture, after a decode in progress, and forgets the time. The name and the
    // status flags stay.
    void Close();

    // Before the pane is destroyed together with others: tells its drawing thread to end without
    // waiting for it yet. The pane shows no more pictures.
    void BeginEnd() { drawThread.BeginEnd(); }

    // PANE_SELECTED, PANE_CONNECTED, PANE_RECORDING.
    std::uint32_t GetStatus() const { return status; }

    // status becomes (status | set) & ~clear; strip and frame are redrawn.
    void SetStatus(std::uint32_t set, std::uint32_t clear);

    // The channel's name and the time text last drawn ("2004/02/29 08:15:00").
    const QString& GetName() const { return name; }
    const std::string& GetTimeText() const { return timeText; }

    // Makes the pop-up, a hidden modeless dialog over the pane's parent. ShowPopup shows it beside
    // the pane without activating it; from then on it follows the pane until HidePopup. Without a
    // pop-up both do nothing.
    void CreatePopup();
    void ShowPopup();
    void HidePopup();

    // Takes the frame's time, hands a copy of its picture to the drawing thread if that is free,
    // and forwards the frame.
    void Deliver(FramePtr frame) override;

    // The pane's position 0..15, set by whoever makes the pane, before it is used.
    std::int32_t index = 0;

protected:
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override;

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void PublishView();
    void RedrawTitle();
    void RedrawTime();
    bool RefreshTimeText();
    bool PaintPicture(QPainter& painter, const PixelRect& video);

    TimeGate timeGate;  // timeValid, lastTime, minInterval
    std::string timeText;
    QString name;
    std::uint32_t status = 0;
    QPointer<CPopupInfoDlg> popup;  // owned; the pointer notices when the parent goes first
    QPointer<QWidget> topLevel;     // the window whose minimising is watched
    QFont stripFont;
    const std::shared_ptr<StatusMarks> marks;

    DrawingThread drawThread;  // last: it ends before what it reports to
};

}  // namespace marvolen
