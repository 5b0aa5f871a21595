#include "platform/async_socket.h"

#include "platform/descriptor_watch.h"
#include "platform/host_resolver.h"

#include <QCoreApplication>

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <new>
#include <optional>
#include <sys/socket.h>
#include <utility>

namespace marvolen {
namespace {

// The system's error as callers know it.
int Translate(int systemError) {
    switch (systemError) {
        case EAGAIN:
            return kWouldBlock;
        case ETIMEDOUT:
            return kTimedOut;
        default:
            return systemError;
    }
}

// Whether the error tells about the network or the peer, not about the call. Such an error comes
// at once or later as it happens.
bool IsNetworkError(int systemError) {
    switch (systemError) {
        case EADDRNOTAVAIL:
        case ECONNREFUSED:
        case ECONNRESET:
        case EHOSTDOWN:
        case EHOSTUNREACH:
        case ENETDOWN:
        case ENETUNREACH:
        case ETIMEDOUT:
            return true;
        default:
            return false;
    }
}

}  // namespace

CAsyncSocket::CAsyncSocket() = default;

CAsyncSocket::~CAsyncSocket() {
    if (destroyed) *destroyed = true;
    Close();
}

bool CAsyncSocket::Create() {
    if (IsOpen()) return Fail(EISCONN);
    descriptor = Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!IsOpen()) return Fail(errno);
    // An urgent byte stands in the stream like any other; kept apart, it would be a descriptor that
    // is readable without a byte to read.
    const int inStream = 1;
    setsockopt(descriptor.Get(), SOL_SOCKET, SO_OOBINLINE, &inStream, sizeof(inStream));
    return true;
}

bool CAsyncSocket::Connect(std::string_view host, std::uint16_t port) {
    if (!IsOpen()) return Fail(ENOTSOCK);
    if (watch != nullptr || lookup != nullptr) return Fail(EALREADY);
    if (const std::optional<Ipv4Address> address = ParseAddress(host)) {
        const int error = BeginConnect(*address, port);
        return error == 0 || Fail(error);
    }
    lookup = HostRequest::Start(host, [this, port](std::optional<Ipv4Address> address) {
        lookup.reset();
        const int error = address ? BeginConnect(*address, port) : kHostNotFound;
        if (error != 0) OnConnect(Translate(error));
    });
    return lookup != nullptr || Fail(EMFILE);
}

// Starts connecting. Returns 0 when the outcome will be reported, else the system's error.
int CAsyncSocket::BeginConnect(std::uint32_t address, std::uint16_t port) {
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr.s_addr = htonl(address);
    connectError = 0;
    if (connect(descriptor.Get(), reinterpret_cast<const sockaddr*>(&peer), sizeof(peer)) != 0) {
        // An interrupted connect goes on all the same.
        const bool underWay = errno == EINPROGRESS || errno == EINTR;
        // Here EAGAIN says that no local port is left; nothing is under way.
        const int error = errno == EAGAIN ? EADDRNOTAVAIL : errno;
        if (!underWay && !IsNetworkError(error)) return error;
        if (!underWay) connectError = error;
    }
    // A socket that has failed to connect counts as writable too.
    watch = std::make_unique<DescriptorWatch>(descriptor.Get(), DescriptorWatch::Readiness::Write,
                                              [this] { OnWritable(); });
    return 0;
}

void CAsyncSocket::OnWritable() {
    int error = connectError;
    socklen_t size = sizeof(error);
    if (error == 0 && getsockopt(descriptor.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0) {
        error = errno;
    }
    watch.reset();
    try {
        if (error == 0) readAhead.resize(kReadAhead);
    } catch (const std::bad_alloc&) {
        error = ENOMEM;
    }
    if (error == 0) {
        watch = std::make_unique<DescriptorWatch>(
            descriptor.Get(), DescriptorWatch::Readiness::Read, [this] { OnReadable(); });
    }
    OnConnect(Translate(error));
}

// What a handler left behind, running an event loop of its own, comes first.
void CAsyncSocket::OnReadable() {
    if (IsWaiting() || ReadAhead()) return Report();
    StopReports();
    OnClose();
}

// False at the end of the stream.
bool CAsyncSocket::ReadAhead() {
    ssize_t received = 0;
    do {
        received = recv(descriptor.Get(), readAhead.data(), readAhead.size(), 0);
    } while (received < 0 && errno == EINTR);
    readBegin = 0;
    readEnd = received > 0 ? static_cast<std::size_t>(received) : 0;
    readError = received < 0 && errno != EAGAIN ? errno : 0;
    if (readError != 0) StopReports();
    return received != 0;
}

// Reports what was read ahead, until a handler closes or destroys the socket. One that receives
// nothing is asked again in a later turn of the event loop. An error is told once.
void CAsyncSocket::Report() {
    bool gone = false;
    bool* const outer = std::exchange(destroyed, &gone);
    while (!gone && IsWaiting()) {
        const std::size_t before = readBegin;
        const bool isError = readBegin == readEnd;
        OnReceive();
        if (gone) break;
        if (isError) readError = 0;
        if (readBegin == before && readBegin < readEnd) {
            ReportLater();
            break;
        }
    }
    if (!gone) destroyed = outer;
    if (gone && outer) *outer = true;
}

void CAsyncSocket::ReportLater() {
    reportingLater = std::make_shared<CAsyncSocket*>(this);
    const auto report = [weak = std::weak_ptr(reportingLater)] {
        if (const auto socket = weak.lock()) (*socket)->Report();
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), report, Qt::QueuedConnection);
}

std::ptrdiff_t CAsyncSocket::Send(std::span<const std::uint8_t> bytes) {
    ssize_t sent = 0;
    do {
        sent = send(descriptor.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    if (sent < 0) Fail(errno);
    return sent;
}

std::ptrdiff_t CAsyncSocket::Receive(std::span<std::uint8_t> buffer) {
    if (readBegin < readEnd) {
        const std::size_t size = std::min(buffer.size(), readEnd - readBegin);
        std::memcpy(buffer.data(), readAhead.data() + readBegin, size);
        readBegin += size;
        return static_cast<std::ptrdiff_t>(size);
    }
    if (readError != 0) {
        Fail(std::exchange(readError, 0));
        return -1;
    }
    ssize_t received = 0;
    do {
        received = recv(descriptor.Get(), buffer.data(), buffer.size(), 0);
    } while (received < 0 && errno == EINTR);
    if (received < 0) Fail(errno);
    const bool ended = received == 0 && !buffer.empty();
    if (ended || (received < 0 && lastError != kWouldBlock)) StopReports();
    return received;
}

void CAsyncSocket::Close() {
    lookup.reset();
    watch.reset();
    reportingLater.reset();
    readAhead = {};
    readBegin = readEnd = 0;
    readError = 0;
    descriptor.Close();
}

// Nothing is read ahead any more: its memory goes with what was left of it.
void CAsyncSocket::StopReports() {
    if (watch != nullptr) watch->Disable();
    if (readBegin == readEnd) readAhead = {};
}

bool CAsyncSocket::Fail(int systemError) {
    lastError = Translate(systemError);
    return false;
}

void CAsyncSocket::OnConnect(int) {}
void CAsyncSocket::OnReceive() {}
void CAsyncSocket::OnClose() {}

}  // namespace marvolen
