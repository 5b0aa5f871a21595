#pragma once

// VideoPane: the pane of one live channel ("display/picture_pane.h").
//
// It sits in the middle of its channel's chain and forwards every frame. Its pictures are decoded
// and scaled by a drawing thread of its own ("display/drawing_thread.h"); pictures that come while
// that thread is busy are not displayed, only forwarded. The video area is black from Open, Close,
// a change of size or visibility until the next picture.
//
// It posts WM_POPUPPANE with wParam index to its dialog for every mouse move over it.
//
// Interface thread only.

#include "display/drawing_thread.h"
#include "display/picture_pane.h"

#include <QPointer>

#include <cstdint>
#include <string_view>

namespace marvolen {

class CPopupInfoDlg;

class VideoPane : public PicturePane {
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

    // Makes the pop-up, a hidden modeless dialog over the pane's parent. ShowPopup shows it beside
    // the pane without activating it; from then on it follows the pane until HidePopup. Without a
    // pop-up both do nothing.
    void CreatePopup();
    void ShowPopup();
    void HidePopup();

    // Takes the frame's time, hands a copy of its picture to the drawing thread if that is free,
    // and forwards the frame.
    void Deliver(FramePtr frame) override;

    // Pictures that came to be seen since the pane was made.
    std::uint64_t ShownCount() const { return shownCount; }

    // One of the panes to choose from.
    QAccessible::Role AccessibleRole() const override { return QAccessible::ListItem; }

    // The pane's position 0..15, set by whoever makes the pane, before it is used.
    std::int32_t index = 0;

Q_SIGNALS:
    // The left button went down on the pane, or it was pressed otherwise.
    void clicked(VideoPane* pane);

    // The drawing thread's, for this pane alone: there is an image to accept.
    void imageFinished(QPrivateSignal);

protected:
    bool PaintPicture(QPainter& painter) override;
    QString AccessibleTitle() const override;  // "NET.3 Gate"

    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void AcceptImage();
    void PublishView();

    QPointer<CPopupInfoDlg> popup;  // owned; the pointer notices when the parent goes first
    std::uint64_t shownCount = 0;
    QPointer<QWidget> topLevel;  // the window whose minimising is watched

    DrawingThread drawThread;  // last: it ends before what it reports to
};

}  // namespace marvolen
