#include "playback/frame_capture.h"

namespace marvolen {

void FrameCapture::Deliver(FramePtr frame) {
    captured.timeText.clear();
    if (frame->Time() != nullptr) FormatTimeInto(*frame->Time(), captured.timeText);
    captured.data.assign(frame->Picture().begin(), frame->Picture().end());
    captured.length = frame->Length();
    captured.width = frame->Width();
    captured.height = frame->Height();
}

}  // namespace marvolen
