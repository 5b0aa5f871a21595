#pragma once

// Up to sixteen network cameras in one object: a listening port for each, an endless multipart
// stream of JPEG pictures for whoever asks, and faults on request (docs/camera_server.md).
//
// The program camera_server wraps this class; tests run it in their own process, on ports the
// system chooses:
//
//     CameraServer server({.channelCount = 2}, std::make_shared<PatternPictures>());
//     ASSERT_TRUE(server.Start());
//     ... connect a client to 127.0.0.1, server.Port(0) ...
//     ASSERT_TRUE(server.WaitForSent(0, 10));
//     server.SetFault(0, MakeFault(FaultKind::Close));
//
// The server runs on a thread of its own, so it neither needs nor disturbs the caller's event loop.
// Every operation may be called from any thread and takes effect before it returns. Channels are
// zero-based; an operation on a channel that doesn't exist does nothing and returns an empty value.

#include "platform/descriptor.h"
#include "platform/thread_annotations.h"
#include "tools/camera_server/fault.h"
#include "tools/camera_server/picture_source.h"
#include "tools/camera_server/sent_journal.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct pollfd;

namespace marvolen {

using TimePoint = std::chrono::steady_clock::time_point;

struct CameraChannel;
class CameraSession;

struct CameraServerOptions {
    std::string address = "127.0.0.1";  // dotted IPv4 address to listen on
    std::uint16_t basePort = 0;         // channel k listens on basePort + k; 0: ports of the system
    int channelCount = 16;              // 1..16
    bool checkCredentials = true;       // false: any or no credentials will do
    std::string userName = "root";
    std::string password = "tuvk";
    std::vector<Fault> faults = {};  // of channel 0, 1, ...; missing ones are None
    std::vector<bool> singlePictures =
        {};  // true: the channel answers with one "image/jpeg" picture
    // Time between pictures at full speed; a request's delay adds to it. Tests shorten it.
    std::chrono::nanoseconds period = std::chrono::nanoseconds(1'000'000'000 / 30);
    int sendBufferBytes = 256 * 1024;  // the kernel's, per connection; 0: as the system has it
    bool keepSent = true;              // keep the lists that SentPictures and Requests return
    std::string sentDir = {};          // write index files and pictures there; empty: don't
    // Receives one line, without line end, per event worth a log. Called on the server's thread
    // and on threads that call operations, one at a time; must not call the server.
    std::function<void(const std::string& line)> log = {};
};

struct ChannelStats {
    std::uint64_t connections = 0;      // accepted so far
    std::uint64_t openConnections = 0;  // now
    std::uint64_t requests = 0;         // complete ones, refused ones included
    std::uint64_t sent = 0;             // pictures handed to a socket completely
    std::uint64_t sentBytes = 0;        // of those pictures
    std::uint64_t skipped = 0;          // pictures a slow client missed
};

class CameraServer {
public:
    CameraServer(CameraServerOptions options, std::shared_ptr<PictureSource> pictures);
    ~CameraServer();  // stops

    CameraServer(const CameraServer&) = delete;
    CameraServer& operator=(const CameraServer&) = delete;

    // Opens every port and starts serving. False, with Error() set and nothing left open, when the
    // options make no sense or a port or the sent directory can't be had. Call it once.
    bool Start();

    // Closes every connection and port and ends the thread. What was sent remains readable.
    void Stop();

    // Why Start returned false.
    std::string Error() const;

    // The port of a channel; 0 before Start. It stays the same through every fault.
    std::uint16_t Port(int channel) const;

    // Gives the channel another fault, for open connections too. Refuse closes the port for new
    // connections and Close ends the open ones; all other faults, and None, keep both open.
    void SetFault(int channel, Fault fault);

    // Ends every open connection of the channel. New ones are welcome.
    void Drop(int channel);

    // The pictures sent so far in the order their last bytes went out; empty without keepSent.
    std::vector<SentPicture> SentPictures(int channel) const;

    // The requests received so far, byte for byte, from the first byte to the empty line; empty
    // without keepSent.
    std::vector<std::string> Requests(int channel) const;

    ChannelStats Stats(int channel) const;

    // Waits until the channel has sent count pictures in all, or received count requests, or has
    // accepted count connections, or has exactly count open ones. False when that takes more than
    // half a minute.
    bool WaitForSent(int channel, std::uint64_t count) const {
        return WaitFor(channel, [count](const ChannelStats& now) { return now.sent >= count; });
    }
    bool WaitForRequests(int channel, std::uint64_t count) const {
        return WaitFor(channel, [count](const ChannelStats& now) { return now.requests >= count; });
    }
    bool WaitForConnections(int channel, std::uint64_t count) const {
        return WaitFor(channel,
                       [count](const ChannelStats& now) { return now.connections >= count; });
    }
    bool WaitForOpenConnections(int channel, std::uint64_t count) const {
        return WaitFor(channel,
                       [count](const ChannelStats& now) { return now.openConnections == count; });
    }

private:
    using Condition = std::function<bool(const ChannelStats& now)>;

    bool WaitFor(int channel, const Condition& holds) const;
    CameraChannel* Find(int channel) const REQUIRES(lock);
    bool OptionsMakeSense() REQUIRES(lock);
    bool OpenChannel(int index, TimePoint now) REQUIRES(lock);
    void Drop(const CameraChannel* channel) REQUIRES(lock);
    void End(CameraSession& session, std::string_view why) REQUIRES(lock);
    void Wake();

    // The thread's.
    void Run();
    TimePoint Work(TimePoint now) REQUIRES(lock);
    void Prepare(std::vector<pollfd>& polls) const REQUIRES(lock);
    void Dispatch(const std::vector<pollfd>& polls, TimePoint now) REQUIRES(lock);
    void AcceptAll(CameraChannel& channel, TimePoint now) REQUIRES(lock);

    const CameraServerOptions options;
    const std::shared_ptr<PictureSource> pictures;

    // Held while anybody works, never while the thread waits.
    mutable Mutex lock;
    mutable std::condition_variable_any changed;
    std::string error GUARDED_BY(lock);
    bool stopping GUARDED_BY(lock) = false;
    std::uint64_t lastSession GUARDED_BY(lock) = 0;
    std::vector<std::unique_ptr<CameraChannel>> channels GUARDED_BY(lock);  // made by Start
    // Only the thread adds and removes, so that what it polls stays; others end them.
    std::list<CameraSession> sessions GUARDED_BY(lock);

    Descriptor wakeEvent;
    std::thread thread;
};

}  // namespace marvolen
