#pragma once

// A channel's port. It is taken once and stays the channel's, whether anybody listens or not.

#include "platform/descriptor.h"

#include <cstdint>
#include <string>

namespace marvolen {

class CameraListener {
public:
    // Takes the port on a dotted IPv4 address; port 0 is one of the system's choice. Nobody
    // listens yet: connections are refused. False when the address or the port can't be had.
    bool Reserve(const std::string& address, std::uint16_t port);

    // Starts or ends listening. Connections not yet accepted when it ends are reset.
    bool SetListening(bool listen);
    bool IsListening() const { return listening; }

    // The next waiting connection, non-blocking, with its peer as "address:port"; none when nobody
    // waits.
    Descriptor Accept(std::string& peer);

    // Gives the socket up; Port() stays readable.
    void Close();

    int Handle() const { return socket.Get(); }
    std::uint16_t Port() const { return port; }

private:
    Descriptor socket;
    std::uint16_t port = 0;
    bool listening = false;
};

}  // namespace marvolen
