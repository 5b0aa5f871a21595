#pragma once

// Host names to IPv4 addresses without ever blocking the interface thread.
//
// Names are looked up on threads of their own, one a distinct name: requests for a name whose
// look-up is under way share it, so that a name server that doesn't answer can't pile up threads. A
// look-up can't be interrupted; when nobody wants its result any more it runs out unnoticed, and it
// never delays the program's end.

#include "platform/descriptor.h"
#include "platform/descriptor_watch.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace marvolen {

// An IPv4 address, its first byte the most significant: 127.0.0.1 is 0x7F000001.
using Ipv4Address = std::uint32_t;

// The address that a dotted text such as "192.168.0.5" spells; nothing for any other text. Never
// blocks.
std::optional<Ipv4Address> ParseAddress(std::string_view text);

// Finds a name's address, or nothing when the name has none. May block for as long as it takes.
using HostLookup = std::function<std::optional<Ipv4Address>(const std::string& name)>;

// Has requests made from now on use lookup instead of the system's, and returns what was used
// before. For tests. It is called on other threads, for several names at once.
HostLookup ReplaceHostLookup(HostLookup lookup);

// A wish to know a name's address. Interface thread.
class HostRequest {
public:
    // Receives the address, or nothing when the name has none.
    using Callback = std::function<void(std::optional<Ipv4Address>)>;

    // Has name looked up. resolved is called once, in a later turn of the event loop, and may
    // destroy the request. Null when the system has no descriptor left.
    static std::unique_ptr<HostRequest> Start(std::string_view name, Callback resolved);

    // Cancels: resolved isn't called any more.
    ~HostRequest();
    HostRequest(const HostRequest&) = delete;
    HostRequest& operator=(const HostRequest&) = delete;

private:
    friend HostLookup ReplaceHostLookup(HostLookup lookup);
    struct Job;
    class Jobs;

    HostRequest(Descriptor wakeEvent, std::string_view name, Callback resolved);
    void OnWake();

    const std::shared_ptr<Jobs> allJobs;
    Callback callback;
    Descriptor doneEvent;  // an eventfd, readable once the job is done
    const std::shared_ptr<Job> awaited;
    std::unique_ptr<DescriptorWatch> watch;  // on doneEvent
};

}  // namespace marvolen
