#pragma once

// StreamClient: the connection to a camera server. It connects, sends the request and tells its
// owner what happens, through one function called synchronously. Interface thread.

#include "platform/async_socket.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace marvolen {

class StreamClient : public CAsyncSocket {
public:
    // What the client tells.
    enum Notification : std::uint16_t {
        kConnected = 0,      // established; the request is sent right afterwards
        kClosed = 1,         // the peer has ended the stream
        kReadable = 2,       // Receive has something to give
        kConnectFailed = 3,  // the attempt has ended without a connection
    };

    // May close the client; may destroy it.
    using NotifyFunction = void (*)(void* context, std::uint16_t code);

    StreamClient() = default;
    ~StreamClient() override;

    // Begins to connect to the server that streamUrl (net/stream_url.h) names. True when the
    // attempt is under way; its outcome is notified. False, with nothing notified ever, when the
    // URL doesn't split, its scheme isn't "http", or the attempt fails at once. A client connects
    // once.
    bool Connect(std::string_view streamUrl, NotifyFunction notifyFunction, void* context);

    // Sends the request for the stream. False, with nothing sent, when the URL doesn't yield one.
    // How much of it the connection took isn't looked at: a fresh one has room for all.
    bool BuildRequest();

    // As CAsyncSocket's; the end of the stream and an error end IsConnected too.
    std::ptrdiff_t Receive(std::span<std::uint8_t> buffer);

    // The attempt has succeeded, or ended because the peer didn't answer in time.
    bool HasSettled() const { return settled; }

    bool IsConnected() const { return IsOpen() && connected; }

protected:
    void OnConnect(int error) override;
    void OnReceive() override;
    void OnClose() override;

private:
    NotifyFunction notify = nullptr;
    void* notifyContext = nullptr;
    std::string url;
    bool settled = false;
    bool connected = false;
    bool* destroyed = nullptr;  // set by the destructor, for a notification that is under way
};

}  // namespace marvolen
