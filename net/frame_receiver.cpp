#include "net/frame_receiver.h"

#include "net/channel_link.h"

#include <utility>

namespace marvolen {

void FrameReceiver::SetNext(FrameReceiver* receiver) {
    next = receiver;
}

FrameReceiver* FrameReceiver::TakeNext() {
    return std::exchange(next, nullptr);
}

bool FrameReceiver::Start(ChannelLink* startingLink) {
    if (next != nullptr && !next->Start(startingLink)) return false;
    link = startingLink;
    active = true;
    return true;
}

void FrameReceiver::Stop() {
    link = nullptr;
    active = false;
    if (next != nullptr) next->Stop();
}

void FrameReceiver::Deliver(FramePtr) {}

void FrameReceiver::ClearChain() {
    if (next != nullptr) next->ClearChain();
    next = nullptr;
}

void FrameReceiver::Forward(FramePtr frame) {
    if (next != nullptr) next->Deliver(std::move(frame));
}

void FrameReceiver::PostEvent(int code) {
    if (link != nullptr) link->OnEvent(code);
}

}  // namespace marvolen
