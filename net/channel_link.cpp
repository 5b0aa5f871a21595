#include "net/channel_link.h"

#include "config/channel_info.h"
#include "net/frame_receiver.h"
#include "platform/messages.h"
#include "platform/window.h"

namespace marvolen {

bool ChannelLink::Open(ChannelInfo* channelInfo, FrameReceiver* firstReceiver, CWnd* eventOwner) {
    info = channelInfo;
    sink = firstReceiver;
    owner = eventOwner;
    return true;
}

void ChannelLink::Close() {
    info = nullptr;
    sink = nullptr;
    owner = nullptr;
}

void ChannelLink::OnEvent(int code) {
    if (owner == nullptr) return;
    owner->PostMessage(WM_NETEVENT, static_cast<WPARAM>(code), reinterpret_cast<LPARAM>(info));
}

// The one operation of a receiver that needs a link's definition stands here, so that receivers
// alone need nothing of the connection's half.
void FrameReceiver::PostEvent(int code) {
    if (link != nullptr) link->OnEvent(code);
}

}  // namespace marvolen
