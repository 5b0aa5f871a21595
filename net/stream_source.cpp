#include "net/stream_source.h"

#include "net/channel_link.h"
#include "net/stream_url.h"

#include <utility>

namespace marvolen {

bool StreamSource::Init(const ChannelInfo& channel) {
    if (!pool.Init(kFrameCapacity, kFrameCount)) return false;
    parser.Init(pool.Acquire(), [this](FramePtr frame) { OnPicture(std::move(frame)); });
    url = FormStreamUrl(channel);
    return true;
}

bool StreamSource::Start(ChannelLink* startingLink) {
    if (!FrameReceiver::Start(startingLink)) return false;
    return client.Connect(
        url, [this](StreamClient::Notification notification) { OnNotify(notification); });
}

void StreamSource::Stop() {
    client.Close();
    FrameReceiver::Stop();
}

void StreamSource::OnNotify(StreamClient::Notification notification) {
    switch (notification) {
        case StreamClient::Notification::Connected:
            return PostEvent(NETEVENT_CONNECT);
        case StreamClient::Notification::Closed:
            return PostEvent(NETEVENT_CLOSE);
        case StreamClient::Notification::Readable:
            return ReceiveOnce();
        case StreamClient::Notification::ConnectFailed:
            return PostEvent(NETEVENT_ERROR);
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
void StreamSource::OnPicture(FramePtr completed) {
    FramePtr fresh = pool.Acquire();
    if (fresh != nullptr) Forward(std::exchange(completed, std::move(fresh)));
    parser.SetBuffer(std::move(completed));
}

}  // namespace marvolen
