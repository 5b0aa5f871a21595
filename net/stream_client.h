#pragma once

// StreamClient: the connection to a camera server. It connects, sends the request and tells its
// owner what happens, through one function called synchronously. Interface thread.

#include "platform/async_socket.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace marvolen {

class StreamClient {
public:
    // What the client tells.
    enum class Notification : std::uint16_t {
        Connected = 0,      // established; the request is sent right afterwards
        Closed = 1,         // the peer has ended the stream
        Readable = 2,       // Receive has something to give
        ConnectFailed = 3,  // the attempt has ended without a connection
    };

    // Called on the interface thread. May close the client, but not destroy it.
    using NotifyFunction = std::function<void(Notification)>;

    StreamClient();
    StreamClient(const StreamClient&) = delete;
    StreamClient& operator=(const StreamClient&) = delete;

    // Begins to connect to the server that streamUrl (net/stream_url.h) names. True when the
    // attempt is under way; its outcome is notified. False, with nothing notified ever, when the
    // URL doesn't split, its scheme isn't "http", or the attempt fails at once. A client connects
    // once.
    bool Connect(std::string_view streamUrl, NotifyFunction notifyFunction);

    // Ends the connection, or the attempt at one, at once and silently.
    void Close() { socket.Close(); }

    // Sends the request for the stream. False, with nothing sent, when the URL doesn't yield one.
    // How much of it the connection took isn't looked at: a fresh one has room for all.
    bool BuildRequest();

    // Receives at most buffer.size() bytes. Returns how many; 0 when the peer has ended the stream;
    // -1 for an error, which GetLastError tells (platform/async_socket.h). The end of the stream
    // and an error, but for kWouldBlock, end IsConnected too.
    std::ptrdiff_t Receive(std::span<std::uint8_t> buffer);
    int GetLastError() const { return socket.GetLastError(); }

    // The attempt has succeeded, or ended because the peer didn't answer in time.
    bool HasSettled() const { return settled; }

    bool IsConnected() const { return socket.IsOpen() && connected; }

protected:
    // The connect attempt has ended: error is 0 when the connection is established.
    void OnConnect(int error);

private:
    // The socket's reports, handed on to the client.
    class Socket final : public CAsyncSocket {
    public:
        explicit Socket(StreamClient& itsClient) : client(itsClient) {}

    private:
        void OnConnect(int error) override { client.OnConnect(error); }
        void OnReceive() override { client.notify(Notification::Readable); }
        void OnClose() override { client.OnClose(); }

        StreamClient& client;
    };

    void OnClose();

    Socket socket;
    NotifyFunction notify;
    std::string url;
    bool settled = false;
    bool connected = false;
};

}  // namespace marvolen
