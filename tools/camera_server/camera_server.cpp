#include "tools/camera_server/camera_server.h"

#include "config/channel_info.h"
#include "tools/camera_server/camera_channel.h"
#include "tools/camera_server/camera_listener.h"
#include "tools/camera_server/camera_session.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <list>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace marvolen {

// One thread waits for sockets and for the next picture that is due. `lock` is held while it works,
// never while it waits; operations take the lock, change what they have to and wake the thread.
class CameraServer::Impl {
public:
    Impl(CameraServerOptions serverOptions, std::shared_ptr<PictureSource> pictureSource)
        : options(std::move(serverOptions)), pictures(std::move(pictureSource)) {}

    bool Start();
    void Stop();
    void SetFault(int channel, Fault fault);
    void Drop(int channel);

    CameraChannel* Find(int channel) const {
        const bool known = channel >= 0 && channel < static_cast<int>(channels.size());
        return known ? channels[static_cast<std::size_t>(channel)].get() : nullptr;
    }

    template <typename Condition>
    bool WaitFor(int channel, std::chrono::milliseconds timeout, Condition condition) {
        std::unique_lock hold(lock);
        CameraChannel* const found = Find(channel);
        return found && changed.wait_for(hold, timeout, [&] { return condition(found->stats); });
    }

    // Constant after construction.
    CameraServerOptions options;
    const std::shared_ptr<PictureSource> pictures;

    // Guarded by lock; the channels and listeners themselves are made by Start and stay.
    std::mutex lock;
    std::condition_variable changed;
    std::string error;
    std::vector<std::unique_ptr<CameraChannel>> channels;
    std::vector<CameraListener> listeners;
    std::list<CameraSession> sessions;

private:
    bool OptionsMakeSense();
    bool OpenChannel(int index, TimePoint now);
    void Run();
    TimePoint Work(TimePoint now);
    void Prepare(std::vector<pollfd>& polls, std::vector<std::uint64_t>& ids) const;
    void Dispatch(const std::vector<pollfd>& polls, const std::vector<std::uint64_t>& ids);
    void AcceptAll(std::size_t channel);
    std::list<CameraSession>::iterator EndSession(std::list<CameraSession>::iterator session,
                                                  const char* why);
    void Wake();

    bool stopping = false;  // guarded by lock
    std::uint64_t lastSession = 0;
    Descriptor wakeEvent;
    std::thread thread;
};

bool CameraServer::Impl::OptionsMakeSense() {
    if (!pictures) {
        error = "no pictures to serve";
    } else if (options.channelCount < 1 || options.channelCount > kChannelCount) {
        error = "between 1 and 16 channels, please";
    } else if (options.basePort != 0 && options.basePort + options.channelCount > 65536) {
        error = "the last channel's port lies beyond 65535";
    } else if (options.period <= std::chrono::nanoseconds(0)) {
        error = "the period must be positive";
    }
    return error.empty();
}

bool CameraServer::Impl::OpenChannel(int index, TimePoint now) {
    const auto at = static_cast<std::size_t>(index);
    auto channel = std::make_unique<CameraChannel>(index, options, pictures.get(), now);
    if (at < options.faults.size()) channel->fault = options.faults[at];
    channel->single = at < options.singlePictures.size() && options.singlePictures[at];
    if (!channel->journal.Open(options.sentDir, index, options.keepSent)) {
        error = "can't write to " + options.sentDir;
        return false;
    }
    CameraListener listener;
    const int port = options.basePort == 0 ? 0 : options.basePort + index;
    const bool listen = channel->fault.kind != FaultKind::Refuse;
    if (!listener.Reserve(options.address, static_cast<std::uint16_t>(port)) ||
        !listener.SetListening(listen)) {
        error = "can't listen on " + options.address + ':' + std::to_string(port) + ": " +
                std::strerror(errno);
        return false;
    }
    channels.push_back(std::move(channel));
    listeners.push_back(std::move(listener));
    return true;
}

bool CameraServer::Impl::Start() {
    const std::lock_guard hold(lock);
    bool ok = OptionsMakeSense();
    const TimePoint now = std::chrono::steady_clock::now();
    for (int i = 0; ok && i < options.channelCount; ++i) ok = OpenChannel(i, now);
    wakeEvent = Descriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    if (!ok || !wakeEvent.IsOpen()) {
        channels.clear();
        listeners.clear();
        return false;
    }
    thread = std::thread([this] { Run(); });
    return true;
}

void CameraServer::Impl::Stop() {
    {
        const std::lock_guard hold(lock);
        stopping = true;
        Wake();
    }
    if (thread.joinable()) thread.join();
    const std::lock_guard hold(lock);
    for (auto session = sessions.begin(); session != sessions.end();) {
        session = EndSession(session, "closed");
    }
    for (CameraListener& listener : listeners) listener.Close();
}

void CameraServer::Impl::Wake() {
    const std::uint64_t one = 1;
    // Fails only when the event is raised already.
    [[maybe_unused]] const ssize_t written = ::write(wakeEvent.Get(), &one, sizeof one);
}

void CameraServer::Impl::SetFault(int index, Fault fault) {
    {
        const std::lock_guard hold(lock);
        CameraChannel* const channel = Find(index);
        if (!channel || stopping) return;
        channel->fault = fault;
        channel->Log("fault " + FaultText(fault));
        listeners[static_cast<std::size_t>(index)].SetListening(fault.kind != FaultKind::Refuse);
        const TimePoint now = std::chrono::steady_clock::now();
        for (CameraSession& session : sessions) {
            if (&session.Channel() == channel) session.OnFaultChanged(now);
        }
        Wake();
    }
    if (fault.kind == FaultKind::Close) Drop(index);
}

void CameraServer::Impl::Drop(int index) {
    const std::lock_guard hold(lock);
    const CameraChannel* const channel = Find(index);
    for (auto session = sessions.begin(); session != sessions.end();) {
        session = &session->Channel() == channel ? EndSession(session, "dropped") : ++session;
    }
    Wake();
}

std::list<CameraSession>::iterator CameraServer::Impl::EndSession(
    std::list<CameraSession>::iterator session, const char* why) {
    CameraChannel& channel = *Find(session->Channel().index);
    --channel.stats.openConnections;
    channel.Log(session->Peer() + ' ' + why);
    // A poll that still waits for the socket would keep it open behind our back.
    session->Disconnect();
    changed.notify_all();
    return sessions.erase(session);
}

void CameraServer::Impl::Run() {
    std::vector<pollfd> polls;
    std::vector<std::uint64_t> ids;
    for (;;) {
        TimePoint wake;
        {
            const std::lock_guard hold(lock);
            if (stopping) return;
            wake = Work(std::chrono::steady_clock::now());
            Prepare(polls, ids);
        }
        const auto left = std::clamp<std::chrono::nanoseconds>(
            wake == TimePoint::max() ? std::chrono::hours(1)
                                     : wake - std::chrono::steady_clock::now(),
            std::chrono::nanoseconds(0), std::chrono::hours(1));
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec timeout{.tv_sec = static_cast<std::time_t>(seconds.count()),
                               .tv_nsec = static_cast<long>((left - seconds).count())};
        if (::ppoll(polls.data(), polls.size(), &timeout, nullptr) > 0) Dispatch(polls, ids);
    }
}

// Does what is due and tells when the next thing will be.
TimePoint CameraServer::Impl::Work(TimePoint now) {
    TimePoint wake = TimePoint::max();
    bool worked = false;
    for (auto session = sessions.begin(); session != sessions.end();) {
        if (session->WakeTime() <= now) {
            worked = true;
            if (!session->OnTime(now)) {
                session = EndSession(session, "closed");
                continue;
            }
        }
        wake = std::min(wake, session->WakeTime());
        ++session;
    }
    if (worked) changed.notify_all();
    return wake;
}

void CameraServer::Impl::Prepare(std::vector<pollfd>& polls,
                                 std::vector<std::uint64_t>& ids) const {
    polls.assign(1, {wakeEvent.Get(), POLLIN, 0});
    for (const CameraListener& listener : listeners) {
        // poll() leaves negative descriptors alone.
        polls.push_back({listener.IsListening() ? listener.Handle() : -1, POLLIN, 0});
    }
    ids.clear();
    for (const CameraSession& session : sessions) {
        const int events = POLLIN | (session.WantsWritable() ? POLLOUT : 0);
        polls.push_back({session.Handle(), static_cast<short>(events), 0});
        ids.push_back(session.Id());
    }
}

void CameraServer::Impl::Dispatch(const std::vector<pollfd>& polls,
                                  const std::vector<std::uint64_t>& ids) {
    const std::lock_guard hold(lock);
    std::uint64_t raised = 0;
    // Fails when nobody raised it.
    [[maybe_unused]] const ssize_t count = ::read(wakeEvent.Get(), &raised, sizeof raised);
    const TimePoint now = std::chrono::steady_clock::now();
    const std::size_t firstSession = 1 + listeners.size();
    // Both are in the order of their ids; operations may have ended sessions in the meantime.
    auto session = sessions.begin();
    for (std::size_t i = 0; i < ids.size() && session != sessions.end(); ++i) {
        if (session->Id() != ids[i]) continue;
        const short events = polls[firstSession + i].revents;
        bool alive = true;
        if (events & (POLLIN | POLLHUP | POLLERR)) alive = session->OnReadable(now);
        if (alive && (events & POLLOUT)) alive = session->OnWritable(now);
        session = alive ? std::next(session) : EndSession(session, "closed");
    }
    for (std::size_t i = 0; i < listeners.size(); ++i) {
        if (polls[1 + i].revents != 0) AcceptAll(i);
    }
    changed.notify_all();
}

void CameraServer::Impl::AcceptAll(std::size_t index) {
    std::string peer;
    while (listeners[index].IsListening()) {
        Descriptor socket = listeners[index].Accept(peer);
        if (!socket.IsOpen()) return;
        if (options.sendBufferBytes > 0) {
            ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDBUF, &options.sendBufferBytes,
                         sizeof options.sendBufferBytes);
        }
        CameraChannel& channel = *channels[index];
        ++channel.stats.connections;
        ++channel.stats.openConnections;
        channel.Log(peer + " connected");
        sessions.emplace_back(std::move(socket), ++lastSession, peer, channel,
                              std::chrono::steady_clock::now());
    }
}

CameraServer::CameraServer(CameraServerOptions options, std::shared_ptr<PictureSource> pictures)
    : impl(std::make_unique<Impl>(std::move(options), std::move(pictures))) {}

CameraServer::~CameraServer() {
    Stop();
}

bool CameraServer::Start() {
    return impl->Start();
}

void CameraServer::Stop() {
    impl->Stop();
}

std::string CameraServer::Error() const {
    const std::lock_guard hold(impl->lock);
    return impl->error;
}

std::uint16_t CameraServer::Port(int channel) const {
    const std::lock_guard hold(impl->lock);
    return impl->Find(channel) ? impl->listeners[static_cast<std::size_t>(channel)].Port()
                               : std::uint16_t{0};
}

void CameraServer::SetFault(int channel, Fault fault) {
    impl->SetFault(channel, fault);
}

void CameraServer::Drop(int channel) {
    impl->Drop(channel);
}

std::vector<SentPicture> CameraServer::SentPictures(int channel) const {
    const std::lock_guard hold(impl->lock);
    const CameraChannel* const found = impl->Find(channel);
    return found ? found->journal.Pictures() : std::vector<SentPicture>();
}

std::vector<std::string> CameraServer::Requests(int channel) const {
    const std::lock_guard hold(impl->lock);
    const CameraChannel* const found = impl->Find(channel);
    return found ? found->requests : std::vector<std::string>();
}

ChannelStats CameraServer::Stats(int channel) const {
    const std::lock_guard hold(impl->lock);
    const CameraChannel* const found = impl->Find(channel);
    return found ? found->stats : ChannelStats();
}

bool CameraServer::WaitForSent(int channel, std::uint64_t count,
                               std::chrono::milliseconds timeout) const {
    return impl->WaitFor(channel, timeout,
                         [count](const ChannelStats& stats) { return stats.sent >= count; });
}

bool CameraServer::WaitForRequests(int channel, std::uint64_t count,
                                   std::chrono::milliseconds timeout) const {
    return impl->WaitFor(channel, timeout,
                         [count](const ChannelStats& stats) { return stats.requests >= count; });
}

bool CameraServer::WaitForConnections(int channel, std::uint64_t count,
                                      std::chrono::milliseconds timeout) const {
    return impl->WaitFor(channel, timeout,
                         [count](const ChannelStats& stats) { return stats.connections >= count; });
}

bool CameraServer::WaitForOpenConnections(int channel, std::uint64_t count,
                                          std::chrono::milliseconds timeout) const {
    return impl->WaitFor(channel, timeout, [count](const ChannelStats& stats) {
        return stats.openConnections == count;
    });
}

}  // namespace marvolen
