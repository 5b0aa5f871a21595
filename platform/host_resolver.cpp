#include "platform/host_resolver.h"

#include "platform/thread_annotations.h"
#include "platform/thread_priority.h"

#include <arpa/inet.h>
#include <map>
#include <netdb.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

std::optional<Ipv4Address> LookUpWithSystem(const std::string& name) {
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(name.c_str(), nullptr, &hints, &found) != 0) return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(found, &freeaddrinfo);
    if (found == nullptr) return std::nullopt;
    return ntohl(reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr.s_addr);
}

}  // namespace

// One look-up and who waits for it. Guarded by Jobs::lock.
struct HostRequest::Job {
    std::optional<Ipv4Address> address;
    std::vector<int> waiting;  // eventfds of the requests, each open while it stands here
};

// All look-ups under way. The threads share its ownership, so that one that is stuck at the
// program's end finds everything it touches still in place.
class HostRequest::Jobs : public std::enable_shared_from_this<Jobs> {
public:
    static const std::shared_ptr<Jobs>& OfProgram() {
        static const std::shared_ptr<Jobs> jobs = std::make_shared<Jobs>();
        return jobs;
    }

    // Adds a waiter to the name's job, which is begun when there is none.
    std::shared_ptr<Job> Join(const std::string& name, int wake) {
        const MutexLock guard(lock);
        std::shared_ptr<Job>& job = running[name];
        if (job == nullptr) {
            job = std::make_shared<Job>();
            job->waiting.push_back(wake);
            std::shared_ptr<Job> begun = job;
            Begin(name, begun);
            return begun;
        }
        job->waiting.push_back(wake);
        return job;
    }

    // wake isn't written to any more.
    void Leave(Job& job, int wake) {
        const MutexLock guard(lock);
        std::erase(job.waiting, wake);
    }

    std::optional<Ipv4Address> Result(const Job& job) {
        const MutexLock guard(lock);
        return job.address;
    }

    HostLookup ReplaceLookup(HostLookup replacement) {
        const MutexLock guard(lock);
        running.clear();  // those under way finish for who waits already, nobody joins them
        return std::exchange(lookup, std::move(replacement));
    }

private:
    void Begin(const std::string& name, const std::shared_ptr<Job>& job) REQUIRES(lock) {
        try {
            std::thread([self = shared_from_this(), name, job, find = lookup] {
                // The interface thread, whose priority this one inherited, comes first.
                SetThreadPriority(ThreadPriority::Normal);
                const std::optional<Ipv4Address> address = find(name);
                const MutexLock guard(self->lock);
                self->Finish(name, job, address);
            }).detach();
        } catch (const std::system_error&) {
            Finish(name, job, std::nullopt);
        }
    }

    void Finish(const std::string& name, const std::shared_ptr<Job>& job,
                std::optional<Ipv4Address> address) REQUIRES(lock) {
        const auto entry = running.find(name);
        if (entry != running.end() && entry->second == job) running.erase(entry);
        job->address = address;
        for (const int wake : job->waiting) eventfd_write(wake, 1);
    }

    Mutex lock;
    std::map<std::string, std::shared_ptr<Job>> running GUARDED_BY(lock);
    HostLookup lookup GUARDED_BY(lock) = LookUpWithSystem;
};

std::optional<Ipv4Address> ParseAddress(std::string_view text) {
    in_addr address{};
    // The text is copied for its NUL; one that holds a NUL of its own is no address.
    if (text.find('\0') != std::string_view::npos) return std::nullopt;
    if (inet_pton(AF_INET, std::string(text).c_str(), &address) != 1) return std::nullopt;
    return ntohl(address.s_addr);
}

HostLookup ReplaceHostLookup(HostLookup lookup) {
    return HostRequest::Jobs::OfProgram()->ReplaceLookup(std::move(lookup));
}

std::unique_ptr<HostRequest> HostRequest::Start(std::string_view name, Callback resolved) {
    Descriptor wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!wake.IsOpen()) return nullptr;
    return std::unique_ptr<HostRequest>(
        new HostRequest(std::move(wake), name, std::move(resolved)));
}

HostRequest::HostRequest(Descriptor wakeEvent, std::string_view name, Callback resolved)
    : allJobs(Jobs::OfProgram()),
      callback(std::move(resolved)),
      doneEvent(std::move(wakeEvent)),
      awaited(allJobs->Join(std::string(name), doneEvent.Get())),
      watch(std::make_unique<DescriptorWatch>(doneEvent.Get(), DescriptorWatch::Readiness::Read,
                                              [this] { OnWake(); })) {}

HostRequest::~HostRequest() {
    watch.reset();
    allJobs->Leave(*awaited, doneEvent.Get());
}

void HostRequest::OnWake() {
    watch->Disable();
    const Callback resolved = std::move(callback);
    resolved(allJobs->Result(*awaited));  // may have destroyed this request
}

}  // namespace marvolen
