#pragma once

// StreamSource: the head of a network channel's chain. It owns the connection to the camera server,
// cuts the pictures out of what arrives and forwards each of them, in the pool slot it was received
// into, down the chain. Interface thread.
//
// A source serves one connection attempt; a new connection is made with a new source. What happens
// on the connection goes to the link that started the chain: NETEVENT_CONNECT, NETEVENT_CLOSE,
// NETEVENT_ERROR (net/channel_link.h). A close by the peer gives one NETEVENT_CLOSE.
//
// Nothing is allocated for a picture or a receive. The parser always owns one frame, and no
// receiver keeps one, so at most two of the pool's slots are ever in use.

#include "config/channel_info.h"
#include "net/frame_pool.h"
#include "net/frame_receiver.h"
#include "net/multipart_parser.h"
#include "net/stream_client.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace marvolen {

// At most so many bytes are received for each notification that data waits; when there are more,
// the notification comes again. The other channels have their turn when what the socket read ahead
// has been received (platform/async_socket.h).
inline constexpr std::size_t kReceiveSize = 2003;

class StreamSource : public FrameReceiver {
public:
    StreamSource() = default;

    // Makes the pool and forms the stream URL of the record, which is only read here. False when
    // memory doesn't suffice. Called once, before Start.
    bool Init(const ChannelInfo& channel);

    // Starts the chain, then begins to connect. False when a receiver refuses or the connect
    // attempt fails at once; no event is posted then.
    bool Start(ChannelLink* startingLink) override;

    // Ends the connection silently, then stops the chain. A receiver may call it from its Deliver,
    // but doesn't destroy the source there.
    void Stop() override;

    // The connect attempt has succeeded or timed out.
    bool HasSettled() const { return client.HasSettled(); }
    bool IsConnected() const { return client.IsConnected(); }

private:
    void OnNotify(StreamClient::Notification notification);
    void OnPicture(FramePtr completed);
    void ReceiveOnce();

    // Destroyed in the reverse order: the parser's frame goes back to the pool, the socket is
    // closed, the slots go last.
    FramePool pool;
    std::string url;
    StreamClient client;
    MultipartParser parser;
};

}  // namespace marvolen
