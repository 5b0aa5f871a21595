#include "net/net_channel.h"

#include "net/stream_source.h"

#include <new>
#include <utility>

namespace marvolen {

NetChannel::NetChannel() = default;
NetChannel::~NetChannel() = default;

bool NetChannel::Open(ChannelInfo* channelInfo, FrameReceiver* firstReceiver,
                      NetEventOwner* eventOwner) {
    Close();
    ChannelLink::Open(channelInfo, firstReceiver, eventOwner);

    std::unique_ptr<StreamSource> made(new (std::nothrow) StreamSource);
    if (made == nullptr || !made->Init(*info)) {
        made.reset();
        Close();
        return false;
    }
    source = std::move(made);
    source->SetNext(sink);
    if (!source->Start(this)) {
        Close();
        return false;
    }
    return true;
}

void NetChannel::Close() {
    source.reset();
    ChannelLink::Close();
}

}  // namespace marvolen
