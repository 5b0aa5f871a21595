#include "net/channel_link.h"

#include "net/net_event_owner.h"

namespace marvolen {

bool ChannelLink::Open(ChannelInfo* channelInfo, FrameReceiver* firstReceiver,
                       NetEventOwner* eventOwner) {
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
    if (owner != nullptr) owner->PostNetEvent(code, info);
}

}  // namespace marvolen
