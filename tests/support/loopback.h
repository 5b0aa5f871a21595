#pragma once

// The other end of a connection, for tests: a listener on a loopback port and the peers it accepts.
// They block, but never for longer than kPatience, and they are driven by the test itself.

#include "platform/descriptor.h"

#include <arpa/inet.h>
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <utility>

namespace marvolen::test {

inline constexpr int kPatience = 20000;  // milliseconds until a test gives up waiting

class LoopbackPeer {
public:
    LoopbackPeer() = default;
    explicit LoopbackPeer(Descriptor accepted) : connection(std::move(accepted)) {}

    void Send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            ASSERT_GT(sent, 0);
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
    }

    // Sends a byte that the protocol marks as urgent (RFC 6093).
    void SendUrgent(char byte) { ASSERT_EQ(send(connection.Get(), &byte, 1, MSG_OOB), 1); }

    // What arrives, up to and including its first occurrence of end.
    std::string ReceiveUntil(std::string_view end) {
        std::string received;
        while (received.find(end) == std::string::npos) {
            char buffer[4096];
            const ssize_t size =
                WaitReadable() ? recv(connection.Get(), buffer, sizeof buffer, 0) : 0;
            if (size <= 0) break;
            received.append(buffer, static_cast<std::size_t>(size));
        }
        return received;
    }

    // Whether the other end closes the connection; what it sent before is dropped.
    bool IsEnded() {
        char buffer[4096];
        while (WaitReadable()) {
            if (recv(connection.Get(), buffer, sizeof buffer, 0) <= 0) return true;
        }
        return false;
    }

    void Close() { connection.Close(); }

    // Closes with a reset instead of an orderly end.
    void Reset() {
        const linger abort{1, 0};
        setsockopt(connection.Get(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        Close();
    }

private:
    bool WaitReadable() {
        pollfd state{connection.Get(), POLLIN, 0};
        return poll(&state, 1, kPatience) == 1;
    }

    Descriptor connection;
};

class LoopbackListener {
public:
    explicit LoopbackListener(int backlog = 64)
        : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* const plain = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        const bool listens = bind(listener.Get(), plain, size) == 0 &&
                             listen(listener.Get(), backlog) == 0 &&
                             getsockname(listener.Get(), plain, &size) == 0;
        EXPECT_TRUE(listens);
        port = ntohs(address.sin_port);
    }

    std::uint16_t Port() const { return port; }

    LoopbackPeer Accept() {
        pollfd state{listener.Get(), POLLIN, 0};
        const bool waiting = poll(&state, 1, kPatience) == 1;
        EXPECT_TRUE(waiting) << "nobody connects";
        if (!waiting) return LoopbackPeer();
        return LoopbackPeer(Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC)));
    }

    // The port refuses connections from now on.
    void Close() { listener.Close(); }

private:
    Descriptor listener;
    std::uint16_t port = 0;
};

// A port at which nobody listens.
inline std::uint16_t RefusingPort() {
    LoopbackListener listener;
    return listener.Port();
}

}  // namespace marvolen::test
