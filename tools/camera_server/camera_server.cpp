#include "tools/camera_server/camera_server.h"

#include "config/channel_info.h"
#include "tools/camera_server/camera_channel.h"
#include "tools/camera_server/camera_session.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <utility>

namespace marvolen {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr seconds kPatience(30);

// Waits until one of the descriptors is ready, or until that time.
void Poll(std::vector<pollfd>& polls, TimePoint wake) {
    const auto left = wake == TimePoint::max()
                          ? nanoseconds(std::chrono::hours(1))
                          : std::max(wake - steady_clock::now(), nanoseconds(0));
    const auto whole = std::chrono::duration_cast<seconds>(left);
    const timespec timeout{.tv_sec = static_cast<std::time_t>(whole.count()),
                           .tv_nsec = static_cast<long>((left - whole).count())};
    ::ppoll(polls.data(), polls.size(), &timeout, nullptr);
}

}  // namespace

CameraServer::CameraServer(CameraServerOptions serverOptions,
                           std::shared_ptr<PictureSource> pictureSource)
    : options(std::move(serverOptions)), pictures(std::move(pictureSource)) {}

CameraServer::~CameraServer() {
    Stop();
}

bool CameraServer::OptionsMakeSense() {
    if (!pictures) {
        error = "no pictures to serve";
    } else if (options.channelCount < 1 || options.channelCount > kChannelCount) {
        error = "between 1 and 16 channels, please";
    } else if (options.basePort != 0 && options.basePort + options.channelCount > 65536) {
        error = "the last channel's port lies beyond 65535";
    } else if (options.period <= nanoseconds(0)) {
        error = "the period must be positive";
    }
    return error.empty();
}

bool CameraServer::OpenChannel(int index, TimePoint now) {
    const auto at = static_cast<std::size_t>(index);
    auto channel = std::make_unique<CameraChannel>(index, options, pictures.get(), now);
    if (at < options.faults.size()) channel->fault = options.faults[at];
    channel->single = at < options.singlePictures.size() && options.singlePictures[at];
    if (!channel->journal.Open(options.sentDir, index, options.keepSent)) {
        error = "can't write to " + options.sentDir;
        return false;
    }
    const int port = options.basePort == 0 ? 0 : options.basePort + index;
    if (!channel->listener.Reserve(options.address, static_cast<std::uint16_t>(port)) ||
        !channel->listener.SetListening(channel->fault.kind != FaultKind::Refuse)) {
        error = "can't listen on " + options.address + ':' + std::to_string(port) + ": " +
                std::strerror(errno);
        return false;
    }
    channels.push_back(std::move(channel));
    return true;
}

bool CameraServer::Start() {
    const MutexLock hold(lock);
    bool ok = OptionsMakeSense();
    const TimePoint now = steady_clock::now();
    for (int k = 0; ok && k < options.channelCount; ++k) ok = OpenChannel(k, now);
    if (ok) wakeEvent = Descriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    if (!wakeEvent.IsOpen()) {
        channels.clear();
        return false;
    }
    thread = std::thread([this] { Run(); });
    return true;
}

void CameraServer::Stop() {
    {
        const MutexLock hold(lock);
        stopping = true;
        Wake();
    }
    if (thread.joinable()) thread.join();
    const MutexLock hold(lock);
    for (CameraSession& session : sessions) End(session, "closed");
    sessions.clear();
    for (const auto& channel : channels) channel->listener.Close();
}

void CameraServer::Wake() {
    const std::uint64_t one = 1;
    // Fails only when the event is raised already.
    [[maybe_unused]] const ssize_t written = ::write(wakeEvent.Get(), &one, sizeof one);
}

std::string CameraServer::Error() const {
    const MutexLock hold(lock);
    return error;
}

CameraChannel* CameraServer::Find(int channel) const {
    const bool known = channel >= 0 && channel < static_cast<int>(channels.size());
    return known ? channels[static_cast<std::size_t>(channel)].get() : nullptr;
}

std::uint16_t CameraServer::Port(int channel) const {
    const MutexLock hold(lock);
    const CameraChannel* const found = Find(channel);
    return found ? found->listener.Port() : std::uint16_t{0};
}

std::vector<SentPicture> CameraServer::SentPictures(int channel) const {
    const MutexLock hold(lock);
    const CameraChannel* const found = Find(channel);
    return found ? found->journal.Pictures() : std::vector<SentPicture>();
}

std::vector<std::string> CameraServer::Requests(int channel) const {
    const MutexLock hold(lock);
    const CameraChannel* const found = Find(channel);
    return found ? found->requests : std::vector<std::string>();
}

ChannelStats CameraServer::Stats(int channel) const {
    const MutexLock hold(lock);
    const CameraChannel* const found = Find(channel);
    return found ? found->stats : ChannelStats();
}

bool CameraServer::WaitFor(int channel, const Condition& holds) const {
    const TimePoint end = steady_clock::now() + kPatience;
    MutexLock hold(lock);
    const CameraChannel* const found = Find(channel);
    bool inTime = found != nullptr;
    while (inTime && !holds(found->stats)) {
        inTime = changed.wait_until(hold, end) != std::cv_status::timeout;
    }
    return inTime;
}

void CameraServer::SetFault(int index, Fault fault) {
    const MutexLock hold(lock);
    CameraChannel* const channel = Find(index);
    if (!channel || stopping) return;
    channel->fault = fault;
    channel->Log("fault " + FaultText(fault));
    channel->listener.SetListening(fault.kind != FaultKind::Refuse);
    const TimePoint now = steady_clock::now();
    for (CameraSession& session : sessions) {
        if (&session.Channel() == channel) session.OnFaultChanged(now);
    }
    if (fault.kind == FaultKind::Close) Drop(channel);
    Wake();
}

void CameraServer::Drop(int index) {
    const MutexLock hold(lock);
    Drop(Find(index));
    Wake();
}

void CameraServer::Drop(const CameraChannel* channel) {
    for (CameraSession& session : sessions) {
        if (&session.Channel() == channel) End(session, "dropped");
    }
}

// What has ended stays in the list until the thread comes round, but its peer knows at once.
void CameraServer::End(CameraSession& session, std::string_view why) {
    if (session.HasEnded()) return;
    session.End();
    --session.Channel().stats.openConnections;
    session.Channel().Log(session.Peer() + ' ' + std::string(why));
    changed.notify_all();
}

void CameraServer::Run() {
    std::vector<pollfd> polls;
    MutexLock hold(lock);
    while (!stopping) {
        const TimePoint wake = Work(steady_clock::now());
        Prepare(polls);
        hold.unlock();
        Poll(polls, wake);
        hold.lock();
        Dispatch(polls, steady_clock::now());
    }
}

// Does what is due and tells when the next thing will be.
TimePoint CameraServer::Work(TimePoint now) {
    TimePoint wake = TimePoint::max();
    bool worked = false;
    for (CameraSession& session : sessions) {
        if (!session.HasEnded() && session.WakeTime() <= now) {
            worked = true;
            if (!session.OnTime(now)) End(session, "closed");
        }
        if (!session.HasEnded()) wake = std::min(wake, session.WakeTime());
    }
    sessions.remove_if([](const CameraSession& session) { return session.HasEnded(); });
    if (worked) changed.notify_all();
    return wake;
}

// The wake event, the channels' ports, the sessions' sockets, in the order of their lists.
void CameraServer::Prepare(std::vector<pollfd>& polls) const {
    polls.assign(1, {wakeEvent.Get(), POLLIN, 0});
    for (const auto& channel : channels) {
        // poll() leaves negative descriptors alone.
        const bool listens = channel->listener.IsListening();
        polls.push_back({listens ? channel->listener.Handle() : -1, POLLIN, 0});
    }
    for (const CameraSession& session : sessions) {
        const int events = POLLIN | (session.WantsWritable() ? POLLOUT : 0);
        polls.push_back({session.Handle(), static_cast<short>(events), 0});
    }
}

void CameraServer::Dispatch(const std::vector<pollfd>& polls, TimePoint now) {
    std::uint64_t raised = 0;
    // Fails when nobody raised it.
    [[maybe_unused]] const ssize_t count = ::read(wakeEvent.Get(), &raised, sizeof raised);
    auto poll = polls.begin() + 1 + static_cast<std::ptrdiff_t>(channels.size());
    for (CameraSession& session : sessions) {
        const short events = (poll++)->revents;
        bool alive = true;
        if (session.HasEnded()) continue;
        if (events & (POLLIN | POLLHUP | POLLERR)) alive = session.OnReadable(now);
        if (alive && (events & POLLOUT)) alive = session.OnTime(now);
        if (!alive) End(session, "closed");
    }
    poll = polls.begin() + 1;
    for (const auto& channel : channels) {
        if ((poll++)->revents != 0) AcceptAll(*channel, now);
    }
    changed.notify_all();
}

void CameraServer::AcceptAll(CameraChannel& channel, TimePoint now) {
    std::string peer;
    while (channel.listener.IsListening()) {
        Descriptor socket = channel.listener.Accept(peer);
        if (!socket.IsOpen()) return;
        if (options.sendBufferBytes > 0) {
            ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDBUF, &options.sendBufferBytes,
                         sizeof options.sendBufferBytes);
        }
        ++channel.stats.connections;
        ++channel.stats.openConnections;
        channel.Log(peer + " connected");
        sessions.emplace_back(std::move(socket), ++lastSession, peer, channel, now);
    }
}

}  // namespace marvolen
