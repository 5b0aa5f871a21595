#pragma once

// ChannelLink: the base of the objects that open a channel's chain. It receives the chain's network
// events and posts them to the channel's owner.
//
// NetChannel (net/net_channel.h) is the form that only views. Everything happens on the interface
// thread.

namespace marvolen {

class FrameReceiver;
class NetEventOwner;
struct ChannelInfo;

// Event codes. Where an owner posts them on they are wParam of WM_NETEVENT, whose lParam is the
// channel's ChannelInfo pointer.
inline constexpr int NETEVENT_CONNECT = 256;  // established; the request is sent right afterwards
inline constexpr int NETEVENT_CLOSE = 257;    // the peer closed the connection
inline constexpr int NETEVENT_ERROR = 258;    // the connect attempt or a receive failed

class ChannelLink {
public:
    ChannelLink() = default;
    virtual ~ChannelLink() = default;
    ChannelLink(const ChannelLink&) = delete;
    ChannelLink& operator=(const ChannelLink&) = delete;

    // Opens the channel that channelInfo describes. Pictures go to firstReceiver, events to
    // eventOwner. All three are borrowed until Close. The base stores them and returns true.
    virtual bool Open(ChannelInfo* channelInfo, FrameReceiver* firstReceiver,
                      NetEventOwner* eventOwner);

    // Ends what Open began. The base forgets the three pointers. Harmless when closed.
    virtual void Close();

    // Hands the code and the channel's record to the owner, which handles the event in a later turn
    // of the event loop, possibly after Close. Without an owner, nothing.
    virtual void OnEvent(int code);

protected:
    ChannelInfo* info = nullptr;     // the channel's record
    FrameReceiver* sink = nullptr;   // the first receiver behind the source
    NetEventOwner* owner = nullptr;  // hears of the events
};

}  // namespace marvolen
