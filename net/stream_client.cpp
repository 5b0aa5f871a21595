#include "net/stream_client.h"

#include "net/stream_url.h"

#include <charconv>

namespace marvolen {

StreamClient::~StreamClient() {
    if (destroyed != nullptr) *destroyed = true;
}

bool StreamClient::Connect(std::string_view streamUrl, NotifyFunction notifyFunction,
                           void* context) {
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
    notify = notifyFunction;
    notifyContext = context;
    if (!Create()) return false;
    settled = false;
    if (CAsyncSocket::Connect(host, port)) return true;
    Close();
    return false;
}

bool StreamClient::BuildRequest() {
    std::string request;
    if (!FormRequest(url, request)) return false;
    Send({reinterpret_cast<const std::uint8_t*>(request.data()), request.size()});
    return true;
}

std::ptrdiff_t StreamClient::Receive(std::span<std::uint8_t> buffer) {
    const std::ptrdiff_t received = CAsyncSocket::Receive(buffer);
    if (received == 0 || (received < 0 && GetLastError() != kWouldBlock)) connected = false;
    return received;
}

void StreamClient::OnConnect(int error) {
    settled = error == 0 || error == kTimedOut;
    connected = error == 0;
    if (error != 0) {
        notify(notifyContext, kConnectFailed);
        return;
    }
    bool gone = false;
    destroyed = &gone;
    notify(notifyContext, kConnected);
    if (gone) return;
    destroyed = nullptr;
    // Without a request the server sends nothing; the connection stays until somebody ends it.
    BuildRequest();
}

void StreamClient::OnReceive() {
    notify(notifyContext, kReadable);
}

void StreamClient::OnClose() {
    connected = false;
    notify(notifyContext, kClosed);
}

}  // namespace marvolen
