#pragma once

// PreviewPane: the pane of a preview and of playback ("display/picture_pane.h").
//
// It decodes a picture where it is delivered, draws it at once, writes the picture's size into its
// frame for the receivers behind it, and forwards the frame, decoded or not. A preview leaves
// pictures out while its thread has anything better to do; playback doesn't.
//
// Interface thread only.

#include "display/picture_pane.h"
#include "jpeg/dib_image.h"

#include <cstdint>
#include <string_view>

namespace marvolen {

class PreviewPane : public PicturePane {
    Q_OBJECT

public:
    // What becomes of a picture while the user interface is busy (platform/ui_activity.h).
    enum class WhenBusy {
        kDecode,  // all are decoded, whether the pane is seen or not
        kSkip  // then, while the pane isn't seen, and when its stamp isn't taken, it isn't decoded
    };

    // A closed, unselected, black pane. The parent owns it.
    explicit PreviewPane(QWidget* parent) : PicturePane(parent) {}

    // Prepares the pane for a channel or file: its name (in the system's narrow encoding), the
    // milliseconds by which a stamp must exceed the one shown to take its place, and what becomes
    // of pictures. It is black until the next one. False when the pane can't draw, which doesn't
    // happen.
    bool Open(std::string_view newName, std::uint32_t newMinInterval, WhenBusy newWhenBusy);

    // Releases the picture and forgets the time: the pane is black. The name stays.
    void Close();

    // Takes the frame's time, decodes its picture and draws it unless it is to be skipped, and
    // forwards the frame. One that doesn't decode leaves the picture before it. Only a frame whose
    // picture was decoded gets a width and height.
    void Deliver(FramePtr frame) override;

protected:
    bool PaintPicture(QPainter& painter) override;

private:
    void Decode(VideoFrame& frame);

    DibImage picture;
    bool skipWhenBusy = true;

    // The picture as it is on the screen.
    Stretcher stretcher;
    ScreenImage image;
    bool imageIsOld = true;  // the picture is a newer one
};

}  // namespace marvolen
