#include "tools/camera_server/camera_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <utility>

namespace marvolen {
namespace {

// A bound socket that doesn't listen; none when that fails. port receives the port it got.
Descriptor BindSocket(in_addr address, std::uint16_t& port) {
    Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int on = 1;
    ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(port);
    name.sin_addr = address;
    socklen_t length = sizeof name;
    if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&name), length) != 0 ||
        ::getsockname(socket.Get(), reinterpret_cast<sockaddr*>(&name), &length) != 0) {
        return {};
    }
    port = ntohs(name.sin_port);
    return socket;
}

}  // namespace

bool CameraListener::Reserve(const std::string& address, std::uint16_t wantedPort) {
    in_addr parsed{};
    if (::inet_pton(AF_INET, address.c_str(), &parsed) != 1) return false;
    port = wantedPort;
    Descriptor chosen = BindSocket(parsed, port);
    // The kernel lets a port of its own choice go when listening ends, one asked for by number
    // stays: bind to the chosen one by number while it is held.
    if (wantedPort == 0 && chosen.IsOpen()) {
        socket = BindSocket(parsed, port);
    } else {
        socket = std::move(chosen);
    }
    return socket.IsOpen();
}

bool CameraListener::SetListening(bool listen) {
    if (listen == listening) return true;
    // Shutting a listening socket down takes it back to being merely bound.
    const int result =
        listen ? ::listen(socket.Get(), SOMAXCONN) : ::shutdown(socket.Get(), SHUT_RD);
    if (result == 0) listening = listen;
    return result == 0;
}

void CameraListener::Close() {
    socket.Close();
    listening = false;
}

Descriptor CameraListener::Accept(std::string& peer) {
    sockaddr_in name{};
    socklen_t length = sizeof name;
    Descriptor connection(::accept4(socket.Get(), reinterpret_cast<sockaddr*>(&name), &length,
                                    SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!connection.IsOpen()) return connection;
    // The closing boundary of a picture must not wait for an acknowledgement.
    const int on = 1;
    ::setsockopt(connection.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    char text[INET_ADDRSTRLEN] = "";
    ::inet_ntop(AF_INET, &name.sin_addr, text, sizeof text);
    peer = std::string(text) + ':' + std::to_string(ntohs(name.sin_port));
    return connection;
}

}  // namespace marvolen
