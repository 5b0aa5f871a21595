#include "record/channel_recorder.h"

#include "net/stream_source.h"
#include "record/record_writer.h"

#include <new>
#include <utility>

namespace marvolen {

ChannelRecorder::ChannelRecorder() = default;

ChannelRecorder::~ChannelRecorder() {
    if (opened) ChannelRecorder::Close(CloseFlag::Ordered);
}

bool ChannelRecorder::Open(ChannelInfo* channel, FrameReceiver* pane, NetEventOwner* eventOwner) {
    Close(CloseFlag::Ordered);
    if (!ChannelLink::Open(channel, pane, eventOwner)) return false;
    source.reset(new (std::nothrow) StreamSource);
    if (!source || !source->Init(*channel)) {
        Close(CloseFlag::Ended);
        return false;
    }
    writer.reset(new (std::nothrow) RecordWriter);
    if (!writer || !writer->Open(*channel)) {
        const RecordTrouble reason = writer ? writer->Trouble() : RecordTrouble::CannotOpen;
        Close(CloseFlag::Ended);
        NoteTrouble(reason);
        return false;
    }
    source->SetNext(pane);
    pane->SetNext(this);
    SetNext(writer.get());
    recording = false;
    frameCount = 0;
    opened = true;
    return true;
}

void ChannelRecorder::SetRecording(bool on) {
    recording = on;
    if (!on) NoteTrouble(RecordTrouble::None);
}

bool ChannelRecorder::Connect() {
    return source && source->Start(this);
}

std::uint32_t ChannelRecorder::TakeFrameCount() {
    return source ? std::exchange(frameCount, 0U) : 0;
}

bool ChannelRecorder::IsConnected() const {
    return source && source->IsConnected();
}

bool ChannelRecorder::HasSettled() const {
    return source && source->HasSettled();
}

void ChannelRecorder::Close(CloseFlag) {
    if (source) {
        source->Stop();
        if (FrameReceiver* pane = source->TakeNext()) pane->TakeNext();
        source.reset();
    }
    writer.reset();
    TakeNext();
    ChannelLink::Close();
    opened = false;
}

void ChannelRecorder::Deliver(FramePtr frame) {
    ++frameCount;
    ++counts.received;
    if (!recording || !frame->Time()) return;
    ++counts.due;
    Forward(std::move(frame));
    if (!writer) return;
    if (writer->Trouble() == RecordTrouble::None) ++counts.recorded;
    NoteTrouble(writer->Trouble());
}

void ChannelRecorder::NoteTrouble(RecordTrouble now) {
    if (now == std::exchange(trouble, now) || !troubleHandler) return;
    troubleHandler(now);
}

}  // namespace marvolen
