#pragma once

// CAsyncSocket: a TCP connection that never blocks and reports what happens through virtual
// handlers, on the interface thread, from the event loop.
//
// - Reports are level-triggered: OnReceive comes again as long as bytes wait that weren't received.
// - What waits is read ahead, up to kReadAhead bytes at a time, and reported from there. A peer
//   that never pauses gets no more than that before the other sockets have their turn.
// - After the end of the stream or an error the connection reports nothing more. A dead connection
//   that is kept costs its descriptor.
// - After Close, or once destroyed, a socket reports nothing more, not even when that happens
//   inside one of its own handlers, which may do both.
// - Name resolution happens aside (platform/host_resolver.h); only IPv4 is spoken. Writing to a
//   closed connection raises no signal. The descriptor isn't inherited by programs started.
//
// Errors are the system's numbers, but for those that callers tell apart by value.

#include "platform/descriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace marvolen {

class DescriptorWatch;
class HostRequest;

inline constexpr int kWouldBlock = 10035;    // nothing to be had right now
inline constexpr int kTimedOut = 10060;      // the peer didn't answer in time
inline constexpr int kHostNotFound = 11001;  // the name has no address

// Bytes that a socket takes from the system at once.
inline constexpr std::size_t kReadAhead = 65536;

class CAsyncSocket {
public:
    CAsyncSocket();
    virtual ~CAsyncSocket();
    CAsyncSocket(const CAsyncSocket&) = delete;
    CAsyncSocket& operator=(const CAsyncSocket&) = delete;

    // Makes a stream socket with any local port. False when there is one already or the system has
    // none left.
    bool Create();

    // Begins to connect to host, a dotted address or a name. True when the attempt is under way,
    // its outcome coming through OnConnect, never from within this call. False, with the last error
    // set and nothing reported, when it can't be begun. What the network says at once (no route,
    // refused) is reported through OnConnect like what it says later.
    bool Connect(std::string_view host, std::uint16_t port);

    // Hands bytes to the connection. Returns how many it took, or -1 with the last error set.
    std::ptrdiff_t Send(std::span<const std::uint8_t> bytes);

    // Receives at most buffer.size() bytes, urgent ones in their place. Returns how many; 0 when
    // the peer has ended the stream; -1 with the last error set, which is kWouldBlock when nothing
    // waits.
    std::ptrdiff_t Receive(std::span<std::uint8_t> buffer);

    // Ends the connection, or the attempt at one, at once and silently.
    void Close();

    bool IsOpen() const { return descriptor.IsOpen(); }

    // The error of the latest operation that failed, 0 before that.
    int GetLastError() const { return lastError; }

protected:
    // The connect attempt has ended: error is 0 when the connection is established.
    virtual void OnConnect(int error);

    // Bytes wait, or an error that Receive will tell.
    virtual void OnReceive();

    // The peer has ended the stream and everything before that has been received. Comes once.
    virtual void OnClose();

private:
    bool Fail(int systemError);
    int BeginConnect(std::uint32_t address, std::uint16_t port);
    void OnWritable();
    void OnReadable();
    bool ReadAhead();
    bool IsWaiting() const { return readBegin < readEnd || readError != 0; }
    void Report();
    void ReportLater();
    void StopReports();

    Descriptor descriptor;
    int lastError = 0;
    int connectError = 0;  // what connecting said at once, to be reported from the event loop

    // Read ahead: bytes [readBegin, readEnd), and behind them an error of the system's or none.
    std::vector<std::uint8_t> readAhead;
    std::size_t readBegin = 0;
    std::size_t readEnd = 0;
    int readError = 0;
    std::shared_ptr<CAsyncSocket*> reportingLater;  // whoever holds it may report
    bool* destroyed = nullptr;                      // where to say so while Report runs

    // At most one is there: while the name is looked up; while connecting and when connected.
    std::unique_ptr<HostRequest> lookup;
    std::unique_ptr<DescriptorWatch> watch;
};

}  // namespace marvolen
