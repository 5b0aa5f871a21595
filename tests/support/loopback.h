#pragma once

// The other end of a connection, for tests: accepted by a listener on a loopback port, or connected
// to one. It blocks, but never for longer than kPatience, and is driven by the test itself.

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

inline sockaddr_in LoopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

class LoopbackPeer {
public:
    LoopbackPeer() = default;
    explicit LoopbackPeer(Descriptor connected) : connection(std::move(connected)) {}

    // Connects; receiveBuffer, when given, is what the kernel keeps for a peer that doesn't read.
    explicit LoopbackPeer(std::uint16_t port, int receiveBuffer = 0)
        : connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        if (receiveBuffer > 0) {
            setsockopt(connection.Get(), SOL_SOCKET, SO_RCVBUF, &receiveBuffer,
                       sizeof receiveBuffer);
        }
        const sockaddr_in address = LoopbackAddress(port);
        if (connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address),
                    sizeof address) != 0) {
            Close();
        }
    }

    bool IsConnected() const { return connection.IsOpen(); }

    void Send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            ASSERT_GT(sent, 0);
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
    }

    // Sends a byte that the protocol marks as urgent (RFC 6093).
    void SendUrgent(char byte) { ASSERT_EQ(send(connection.Get(), &byte, 1, MSG_OOB), 1); }

    // All that has arrived, once the text has occurred in it that many times, or the other end has
    // closed the connection.
    std::string ReceiveUntil(std::string_view text, int times = 1) {
        std::size_t from = 0;
        while (times > 0) {
            const std::size_t found = received.find(text, from);
            if (found != std::string::npos) {
                from = found + text.size();
                --times;
            } else if (!Receive()) {
                break;
            }
        }
        return received;
    }

    // Whether the other end closes the connection; Received() is all that it sent.
    bool IsEnded() {
        while (Receive()) {
        }
        return ended;
    }

    const std::string& Received() const { return received; }

    void Close() { connection.Close(); }

    // Closes with a reset instead of an orderly end.
    void Reset() {
        const linger abort{1, 0};
        setsockopt(connection.Get(), SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
        Close();
    }

private:
    bool Receive() {
        char buffer[65536];
        pollfd state{connection.Get(), POLLIN, 0};
        if (poll(&state, 1, kPatience) != 1) {
            ADD_FAILURE() << "nothing comes";
            return false;
        }
        const ssize_t size = recv(connection.Get(), buffer, sizeof buffer, 0);
        ended = size <= 0;
        if (!ended) received.append(buffer, static_cast<std::size_t>(size));
        return !ended;
    }

    Descriptor connection;
    std::string received;
    bool ended = false;
};

class LoopbackListener {
public:
    LoopbackListener() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = LoopbackAddress(0);
        auto* const plain = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        const bool listens = bind(listener.Get(), plain, size) == 0 &&
                             listen(listener.Get(), 64) == 0 &&
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

}  // namespace marvolen::test
