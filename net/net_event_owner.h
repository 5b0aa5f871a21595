#pragma once

// NetEventOwner: who owns a channel and hears of its network events, in the shape that the chain
// knows. A window implements it by posting WM_NETEVENT to itself. No toolkit, no window.

namespace marvolen {

struct ChannelInfo;

class NetEventOwner {
public:
    // Interface thread: an event (NETEVENT_..., net/channel_link.h) of the channel with this
    // record. Takes note and returns: it is called from within the notification that raised the
    // event, so it neither closes the channel nor does anything else that the chain would notice.
    virtual void PostNetEvent(int code, ChannelInfo* info) = 0;

protected:
    ~NetEventOwner() = default;
};

}  // namespace marvolen
