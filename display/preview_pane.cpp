#include "display/preview_pane.h"

#include "platform/ui_activity.h"

#include <utility>

namespace marvolen {

bool PreviewPane::Open(std::string_view newName, std::uint32_t newMinInterval,
                       WhenBusy newWhenBusy) {
    skipWhenBusy = newWhenBusy == WhenBusy::kSkip;
    picture.Reset();
    picture.InitHeader();
    OpenTitle(newName, newMinInterval);
    update();
    return true;
}

void PreviewPane::Close() {
    picture.Reset();
    CloseTitle();
    update();
}

void PreviewPane::Deliver(FramePtr frame) {
    const bool isToShow = PassTime(frame->Time());
    if (!skipWhenBusy || (isToShow && IsShown() && !IsUiBusy())) Decode(*frame);
    Forward(std::move(frame));
}

void PreviewPane::Decode(VideoFrame& frame) {
    if (picture.DecodeJpeg(frame.Data(), frame.Length()) != 1) return;
    frame.SetWidth(picture.Width());
    frame.SetHeight(picture.Height());
    imageIsOld = true;
    RedrawPicture();
    repaint(VideoRect());  // now: an export delivers many pictures in one turn of the event loop
}

bool PreviewPane::PaintPicture(QPainter& painter) {
    if (picture.GetPixels() == nullptr) return false;
    const QSize size = ImageSize();
    if (imageIsOld || size != QSize(image.width, image.height)) {
        imageIsOld =
            !image.Resize(size.width(), size.height()) ||
            !stretcher.Stretch(
                {picture.GetPixels(), picture.Width(), picture.Height(), picture.Stride()}, image);
    }
    return !imageIsOld && PaintImage(painter, image);
}

}  // namespace marvolen
