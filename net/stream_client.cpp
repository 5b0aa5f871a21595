#include "net/stream_client.h"

#include "net/stream_url.h"

#include <charconv>
#include <utility>

namespace marvolen {

StreamClient::StreamClient() : socket(*this) {}

bool StreamClient::Connect(std::string_view streamUrl, NotifyFunction notifyFunction) {
    std::string scheme;
    std::string host;
    std::string portText;
    if (!CrackUrlPart(streamUrl, UrlPart::Scheme, scheme) || scheme != "http" ||
        !CrackUrlPart(streamUrl, UrlPart::Host, host) ||
        !CrackUrlPart(streamUrl, UrlPart::Port, portText)) {
        return false;
    }
    std::uint16_t port = 0;
    std::from_chars(portText.data(), portText.data() + portText.size(), port);

    url = streamUrl;
    notify = std::move(notifyFunction);
    if (!socket.Create()) return false;
    settled = false;
    if (socket.Connect(host, port)) return true;
    socket.Close();
    return false;
}

bool StreamClient::BuildRequest() {
    std::string request;
    if (!FormRequest(url, request)) return false;
    socket.Send({reinterpret_cast<const std::uint8_t*>(request.data()), request.size()});
    return true;
}

std::ptrdiff_t StreamClient::Receive(std::span<std::uint8_t> buffer) {
    const std::ptrdiff_t received = socket.Receive(buffer);
    if (received == 0 || (received < 0 && GetLastError() != kWouldBlock)) connected = false;
    return received;
}

void StreamClient::OnConnect(int error) {
    settled = error == 0 || error == kTimedOut;
    connected = error == 0;
    if (error != 0) return notify(Notification::ConnectFailed);
    notify(Notification::Connected);
    // Without a request the server sends nothing; the connection stays until somebody ends it.
    if (socket.IsOpen()) BuildRequest();
}

void StreamClient::OnClose() {
    connected = false;
    notify(Notification::Closed);
}

}  // namespace marvolen
