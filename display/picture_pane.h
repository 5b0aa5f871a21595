#pragma once

// PicturePane: what the panes of live channels and of previews have in common.
//
// A black title strip with a name, the time of the latest picture and two status marks; below it
// the picture, stretched over the rest of the pane; around both a two-pixel frame that is red while
// the pane is selected. Where there is no picture to paint, its area is black. Geometry is in
// device-independent pixels and stands in "display/pane_geometry.h".
//
// A pane sits in a chain of frame receivers; what it does with a frame before it forwards it is the
// derived pane's. To assistive tools it is known by its name, selected or not, and described by
// what its marks say and by its trouble; they are told of changes, but not of every picture.
//
// Interface thread only.

#include "display/pane_status.h"
#include "display/status_marks.h"
#include "display/stretch.h"
#include "display/time_gate.h"
#include "net/frame_receiver.h"
#include "platform/control.h"

#include <QFont>
#include <QString>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace marvolen {

class PicturePane : public CStatic, public FrameReceiver {
    Q_OBJECT

public:
    // PANE_SELECTED, PANE_CONNECTED, PANE_RECORDING.
    std::uint32_t GetStatus() const { return status; }

    // status becomes (status | set) & ~clear; strip and frame are redrawn.
    void SetStatus(std::uint32_t set, std::uint32_t clear);

    // What is wrong here, in plain words for the user, or nothing: the pane's tool tip and a part
    // of its accessible description.
    void SetTrouble(const QString& text);

    // The name and the time text last drawn ("2004/02/29 08:15:00").
    const QString& GetName() const { return name; }
    const std::string& GetTimeText() const { return timeText; }

    void AddAccessibleState(QAccessible::State& state) const override;

Q_SIGNALS:
    // Name, status or time text may have changed: those who repeat them look again.
    void titleChanged();

protected:
    // An unselected, black pane without a name. The parent owns it.
    explicit PicturePane(QWidget* parent);

    // The title's part of opening: the name (in the system's narrow encoding), no time, and the
    // milliseconds by which a stamp must exceed the one shown to take its place.
    void OpenTitle(std::string_view newName, std::uint32_t newMinInterval);

    // The title's part of closing: the time isn't shown any more. Name and status stay.
    void CloseTitle() { timeGate.Close(); }

    // Offers a frame's stamp, null for none, to the title. Returns whether its picture is one to
    // show. The time text follows with RedrawPicture.
    bool PassTime(const SYSTEMTIME* stamp) { return timeGate.Pass(stamp); }

    // The pane is visible and its window isn't minimised.
    bool IsShown() const;

    // The video area; and its size in device pixels, which an image for PaintImage must have.
    QRect VideoRect() const;
    QSize ImageSize() const;

    // Redraws the video area and the time. While there is no time, the text drawn last stays until
    // the strip is redrawn.
    void RedrawPicture();

    // Paints the pane's picture with PaintImage. False when there is none.
    virtual bool PaintPicture(QPainter& painter) = 0;

    // Copies an image of ImageSize pixel by pixel onto the video area. False with any other.
    bool PaintImage(QPainter& painter, const ScreenImage& image) const;

    // What assistive tools call the pane. The base: by its name.
    virtual QString AccessibleTitle() const { return name; }

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;   // selects
    void focusOutEvent(QFocusEvent* event) override;  // doesn't deselect

private:
    QRect ImageRect() const;
    void RedrawTitle();
    const std::string* FormatTime();
    const std::string* RefreshTimeText();
    void DescribeToAssistiveTools();

    TimeGate timeGate;  // timeValid, lastTime, minInterval
    std::string timeText;
    std::string shownTime;  // what RedrawPicture last had drawn; empty once it may have gone
    QString name;
    std::uint32_t status = 0;
    QString trouble;
    QFont stripFont;
    const std::shared_ptr<StatusMarks> marks;
};

}  // namespace marvolen
