#include "net/stream_source.h"

#include "net/channel_link.h"
#include "net/stream_url.h"

#include <utility>

namespace marvolen {

bool StreamSource::Init(const ChannelInfo& channel) {
    if (!pool.Init(kFrameCapacity, kFrameCount)) return false;
    parser.Init(pool.Acquire(), &OnPicture, this);
    url = FormStreamUrl(channel);
    return true;
}

bool StreamSource::Start(ChannelLink* startingLink) {
    if (!FrameReceiver::Start(startingLink)) return false;
    return client.Connect(url, &OnNotify, this);
}

void StreamSource::Stop() {
    client.Close();
    FrameReceiver::Stop();
}

void StreamSource::OnNotify(void* context, std::uint16_t code) {
    auto* const source = static_cast<StreamSource*>(context);
    switch (code) {
        case StreamClient::kConnected:
            source->PostEvent(NETEVENT_CONNECT);
            break;
        case StreamClient::kClosed:
            source->PostEvent(NETEVENT_CLOSE);
            break;
        case StreamClient::kReadable:
            source->ReceiveOnce();
            break;
        case StreamClient::kConnectFailed:
            source->PostEvent(NETEVENT_ERROR);
            break;
        default:
            break;
    }
}

void StreamSource::ReceiveOnce() {
    std::uint8_t buffer[kReceiveSize];  // not cleared: it is filled before it is read
    const std::ptrdiff_t received = client.Receive(buffer);
    if (received > 0) {
        parser.Feed({buffer, static_cast<std::size_t>(received)});
    } else if (received == 0) {
        PostEvent(NETEVENT_CLOSE);
    } else if (client.GetLastError() != kWouldBlock) {
        PostEvent(NETEVENT_ERROR);
    }
}

// The completed picture travels and the fresh frame takes its place; without a fresh one the
// picture is dropped and its frame used again.
void StreamSource::OnPicture(void* context, FramePtr completed) {
    auto* const source = static_cast<StreamSource*>(context);
    FramePtr fresh = source->pool.Acquire();
    if (fresh != nullptr) source->Forward(std::exchange(completed, std::move(fresh)));
    source->parser.SetBuffer(std::move(completed));
}

}  // namespace marvolen
