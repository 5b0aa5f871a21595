#include "net/channel_link.h"

#include "config/channel_info.h"
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

}  // namespace marvolen
