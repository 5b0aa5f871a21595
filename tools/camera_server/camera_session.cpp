#include "tools/camera_server/camera_session.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <sys/socket.h>
#include <sys/uio.h>
#include <utility>

namespace marvolen {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// A source that has no picture yet is asked again after this time.
constexpr milliseconds kSourceRetry(15);

// Bytes of a trickle go out in bursts of single sends, this far apart.
constexpr milliseconds kTrickleStep(1);

// How long a finished connection waits for its peer's end, so that no reset overtakes the answer.
constexpr milliseconds kLinger(1000);

bool IsTemporary(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

std::string Printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
    return text;
}

}  // namespace

CameraSession::CameraSession(Descriptor connectedSocket, std::uint64_t sessionId,
                             std::string peerName, CameraChannel& cameraChannel, TimePoint now)
    : id(sessionId),
      peer(std::move(peerName)),
      socket(std::move(connectedSocket)),
      channel(cameraChannel) {
    if (channel.fault.kind == FaultKind::Close) phase = Phase::Finishing;
    nextPicture = now;
}

TimePoint CameraSession::WakeTime() const {
    if (phase == Phase::Lingering) return lingerEnd;
    TimePoint wake = TimePoint::max();
    if (OutputSize() > outputSent && channel.fault.kind == FaultKind::Trickle) {
        wake = trickleStart + kTrickleStep +
               nanoseconds(std::chrono::seconds(1)) * trickled / channel.fault.count;
    }
    if (phase == Phase::Finishing && OutputSize() == outputSent) return TimePoint::min();
    if (phase == Phase::Answer && !Silenced()) return TimePoint::min();
    if (phase == Phase::Stream && !Silenced()) wake = std::min(wake, nextPicture);
    return wake;
}

bool CameraSession::WantsWritable() const {
    return OutputSize() > outputSent && channel.fault.kind != FaultKind::Trickle;
}

bool CameraSession::OnReadable(TimePoint now) {
    std::array<char, 4096> bytes;
    const ssize_t count = ::recv(socket.Get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count == 0) return false;
    if (count < 0) return IsTemporary(errno);
    if (phase != Phase::Request) return true;
    return ReadRequest({bytes.data(), static_cast<std::size_t>(count)}, now);
}

bool CameraSession::ReadRequest(std::string_view bytes, TimePoint now) {
    received += bytes;
    const std::size_t end = RequestEnd(received);
    if (end == 0 && received.size() <= kLargestRequest) return true;
    received.resize(end == 0 ? received.size() : end);
    request = ParseCameraRequest(received);
    if (end == 0 || end > kLargestRequest) request.status = 400;
    const bool accepted = CredentialsAccepted();
    if (request.status == 200 && !accepted) request.status = 401;

    ++channel.stats.requests;
    const std::string verdict = accepted ? "accepted" : "refused";
    channel.Log(peer + " \"" + Printable(request.line) + "\" credentials " + verdict + ", status " +
                std::to_string(request.status));
    for (std::string& line : LoggableHeaders(received, verdict)) {
        channel.Log(peer + "   " + Printable(std::move(line)));
    }
    if (channel.options.keepSent) channel.requests.push_back(received);
    received.clear();
    phase = Phase::Answer;
    return OnTime(now);
}

bool CameraSession::CredentialsAccepted() const {
    const CameraServerOptions& options = channel.options;
    return !options.checkCredentials ||
           (request.hasCredentials && request.userName == options.userName &&
            request.password == options.password);
}

bool CameraSession::Silenced() const {
    return channel.fault.kind == FaultKind::Silent ||
           (channel.fault.kind == FaultKind::StallAfter && phase == Phase::Stream &&
            pictureNumber >= channel.fault.count);
}

bool CameraSession::OnTime(TimePoint now) {
    if (phase == Phase::Lingering) return now < lingerEnd;
    if (OutputSize() > outputSent && !Flush(now)) return false;
    if (phase == Phase::Finishing && OutputSize() == outputSent) OnOutputDone(now);
    if (phase == Phase::Answer && !Silenced()) BeginAnswer(now);
    if (phase == Phase::Stream && !Silenced() && now >= nextPicture) SendDuePicture(now);
    return Flush(now);
}

void CameraSession::BeginAnswer(TimePoint now) {
    if (request.status != 200) {
        phase = Phase::Finishing;
        Queue({.before = TextAnswer(request.status)}, false, now);
        return;
    }
    if (channel.fault.kind == FaultKind::ContentType) {
        phase = Phase::Idle;
        Queue({.before = TextAnswer(200)}, false, now);
        return;
    }
    phase = Phase::Stream;
    view = {.channel = channel.index, .camera = request.camera, .size = request.size};
    period = PicturePeriod(channel.options.period, request.delay);
    // Channels take turns within a period, as cameras without a common clock do.
    const nanoseconds turn = channel.options.period * channel.index / 16;
    const auto periods = (now - channel.start - turn) / channel.options.period + 1;
    nextPicture = channel.start + turn + periods * channel.options.period;
    if (!channel.single) Queue({.before = StreamHead()}, false, now);
}

void CameraSession::SendDuePicture(TimePoint now) {
    if (channel.fault.kind == FaultKind::CloseAfter && pictureNumber >= channel.fault.count) {
        phase = Phase::Finishing;
        return;
    }
    if (OutputSize() > outputSent) {
        // A camera doesn't wait for a slow client: that picture is gone.
        ++counter;
        ++channel.stats.skipped;
        ScheduleNext(now);
        return;
    }
    const auto position =
        static_cast<std::uint64_t>((nextPicture - channel.start) / channel.options.period);
    const PicturePtr picture = channel.pictures->At(view, position);
    if (!picture) {
        nextPicture = now + kSourceRetry;
        return;
    }
    if (channel.single) {
        phase = Phase::Finishing;
        Queue(MakeSinglePart(channel.fault, picture), true, now);
        return;
    }
    Queue(MakeStreamPart(channel.fault, pictureNumber + 1, picture, StampNow(counter++)), true,
          now);
    ScheduleNext(now);
}

// Keeps to the grid of the period, so that pictures neither drift nor come in a rush after a pause.
void CameraSession::ScheduleNext(TimePoint now) {
    nextPicture += period;
    if (nextPicture < now) nextPicture += ((now - nextPicture) / period + 1) * period;
}

void CameraSession::Queue(AnswerPart part, bool isPicture, TimePoint now) {
    output = std::move(part);
    outputSent = 0;
    outputIsPicture = isPicture;
    trickleStart = now;
    trickled = 0;
}

std::size_t CameraSession::OutputSize() const {
    return output.before.size() + (output.picture ? output.picture->jpeg.size() : 0) +
           output.after.size();
}

// Sends what the socket takes, a trickle's bytes one by one as their time comes.
bool CameraSession::Flush(TimePoint now) {
    const bool trickle = channel.fault.kind == FaultKind::Trickle;
    const double seconds = std::chrono::duration<double>(now - trickleStart).count();
    const auto allowed = static_cast<std::uint64_t>(seconds * channel.fault.count);
    if (OutputSize() == outputSent) return true;
    while (OutputSize() > outputSent) {
        if (trickle && trickled > allowed) return true;
        const ssize_t count = SendSome(trickle ? 1 : OutputSize());
        if (count < 0) {
            trickleStart = now;
            trickled = 0;
            return IsTemporary(errno);
        }
        outputSent += static_cast<std::size_t>(count);
        ++trickled;
    }
    OnOutputDone(now);
    return true;
}

ssize_t CameraSession::SendSome(std::size_t most) {
    // Sending only reads.
    auto* const jpeg =
        output.picture ? const_cast<std::uint8_t*>(output.picture->jpeg.data()) : nullptr;
    iovec pieces[]{{output.before.data(), output.before.size()},
                   {jpeg, output.picture ? output.picture->jpeg.size() : 0},
                   {output.after.data(), output.after.size()}};
    std::size_t skip = outputSent;
    for (iovec& piece : pieces) {
        const std::size_t done = std::min(skip, piece.iov_len);
        skip -= done;
        piece.iov_base = static_cast<char*>(piece.iov_base) + done;
        piece.iov_len = std::min(piece.iov_len - done, most);
        most -= piece.iov_len;
    }
    msghdr message{};
    message.msg_iov = pieces;
    message.msg_iovlen = std::size(pieces);
    return ::sendmsg(socket.Get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void CameraSession::OnOutputDone(TimePoint now) {
    if (outputIsPicture) NotePictureSent();
    output = {};
    outputSent = 0;
    outputIsPicture = false;
    const bool enough = channel.fault.kind == FaultKind::CloseAfter && phase == Phase::Stream &&
                        !channel.single && pictureNumber >= channel.fault.count;
    if (enough) phase = Phase::Finishing;
    if (phase == Phase::Finishing) {
        ::shutdown(socket.Get(), SHUT_WR);
        phase = Phase::Lingering;
        lingerEnd = now + kLinger;
    }
}

void CameraSession::NotePictureSent() {
    ++pictureNumber;
    ++connectionNumber;
    ++channel.stats.sent;
    channel.stats.sentBytes += output.picture->jpeg.size();
    channel.journal.Add({.connection = id,
                         .number = connectionNumber,
                         .stamped = output.stamped,
                         .stamp = output.stamp,
                         .view = view,
                         .picture = output.picture});
}

void CameraSession::OnFaultChanged(TimePoint now) {
    pictureNumber = 0;
    trickleStart = now;
    trickled = 0;
    if (phase == Phase::Stream && nextPicture < now) ScheduleNext(now);
}

void CameraSession::End() {
    ::shutdown(socket.Get(), SHUT_RDWR);
    phase = Phase::Ended;
}

}  // namespace marvolen
