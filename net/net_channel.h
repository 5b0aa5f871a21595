#pragma once

// NetChannel: a channel that is only viewed. Its chain is a StreamSource and, behind it, the sink
// given to Open.

#include "net/channel_link.h"

#include <memory>

namespace marvolen {

class StreamSource;

class NetChannel : public ChannelLink {
public:
    NetChannel();
    ~NetChannel() override;

    // Makes a source for the record, wires the sink behind it, starts the chain and begins to
    // connect. An open channel is closed first. False, with the channel closed, when memory
    // doesn't suffice, the record's texts make no usable URL, the sink refuses to start or the
    // connect attempt fails at once; no event is posted then. The record is read during Open and
    // its address kept for the events; sink and owner stay alive until Close.
    bool Open(ChannelInfo* channelInfo, FrameReceiver* firstReceiver,
              NetEventOwner* eventOwner) override;

    // Destroys the source, which closes its connection: nothing is posted afterwards. Receivers
    // behind the source are not stopped.
    void Close() override;

private:
    std::unique_ptr<StreamSource> source;  // null while closed
};

}  // namespace marvolen
