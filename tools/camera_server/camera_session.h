#pragma once

// One client's connection: reads the request, answers it, sends pictures when they are due and
// misbehaves as the channel's fault says. Owns its socket but waits for nothing; the server calls
// it when the socket is ready or its time has come.

#include "platform/descriptor.h"
#include "tools/camera_server/camera_answer.h"
#include "tools/camera_server/camera_channel.h"
#include "tools/camera_server/camera_request.h"

#include <cstdint>
#include <string>

namespace marvolen {

class CameraSession {
public:
    // channel must outlive the session. socket is connected and non-blocking.
    CameraSession(Descriptor socket, std::uint64_t id, std::string peer, CameraChannel& channel,
                  TimePoint now);

    int Handle() const { return socket.Get(); }
    CameraChannel& Channel() const { return channel; }
    const std::string& Peer() const { return peer; }

    // When OnTime wants to be called; TimePoint::max() for never.
    TimePoint WakeTime() const;
    bool WantsWritable() const;

    // The socket is readable; it is writable or the time has come. Each returns false when the
    // connection has come to its end.
    bool OnReadable(TimePoint now);
    bool OnTime(TimePoint now);

    // The channel has another fault: counts begin anew, whatever was held back may go on.
    void OnFaultChanged(TimePoint now);

    // The peer sees the end of the stream at once. Only destruction, which alone closes the socket,
    // may follow.
    void End();
    bool HasEnded() const { return phase == Phase::Ended; }

private:
    enum class Phase {
        Request,    // reading the request
        Answer,     // the head of the answer has still to be sent
        Stream,     // sending a picture whenever one is due
        Idle,       // nothing more will be sent
        Finishing,  // closes once the output is out
        Lingering,  // output closed; waits a moment for the peer to close as well
        Ended,
    };

    bool ReadRequest(std::string_view bytes, TimePoint now);
    bool CredentialsAccepted() const;
    void BeginAnswer(TimePoint now);
    bool Silenced() const;
    void SendDuePicture(TimePoint now);
    void ScheduleNext(TimePoint now);
    void Queue(AnswerPart part, bool isPicture, TimePoint now);
    bool Flush(TimePoint now);
    ssize_t SendSome(std::size_t most);
    void OnOutputDone(TimePoint now);
    void NotePictureSent();
    std::size_t OutputSize() const;

    const std::uint64_t id;
    const std::string peer;
    Descriptor socket;
    CameraChannel& channel;

    Phase phase = Phase::Request;
    std::string received;
    CameraRequest request;
    View view;

    std::chrono::nanoseconds period{0};
    TimePoint nextPicture;               // Stream: when the next picture is due
    TimePoint lingerEnd;                 // Lingering: when patience ends
    std::uint32_t counter = 0;           // pictures of this connection, skipped ones included
    std::uint64_t pictureNumber = 0;     // pictures sent since the connection or the fault began
    std::uint64_t connectionNumber = 0;  // pictures sent on this connection

    AnswerPart output;  // what is being sent
    std::size_t outputSent = 0;
    bool outputIsPicture = false;
    TimePoint trickleStart;  // when the bytes sent one by one began, and how many there were
    std::uint64_t trickled = 0;
};

}  // namespace marvolen
