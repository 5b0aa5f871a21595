#include "playback/record_player.h"

#include "platform/native_path.h"
#include "platform/text_field.h"

#include <utility>

namespace marvolen {

bool RecordPlayer::Open(const ChannelInfo& record) {
    if (!OpenForRead(MapDrivePath(FieldText(record.recordPath)))) return false;
    if (pool.Init(kFrameCapacity, kFrameCount)) return true;
    CloseReader();
    return false;
}

bool RecordPlayer::StepForward() {
    return Show(&RecordFile::StepForward);
}

bool RecordPlayer::StepBack() {
    return Show(&RecordFile::StepBack);
}

bool RecordPlayer::Show(bool (RecordFile::*step)()) {
    FramePtr frame = pool.Acquire();
    if (!frame || !(this->*step)() || !ReadRecord(*frame)) return false;
    Forward(std::move(frame));
    return true;
}

}  // namespace marvolen
