#pragma once

// A camera's client for tests: blocks, reads as much as it is told to, and takes answers apart with
// the parser that the program itself uses.

#include "net/frame_pool.h"
#include "net/multipart_parser.h"
#include "platform/descriptor.h"
#include "tests/support/loopback.h"
#include "tools/camera_server/sent_journal.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace marvolen::test {

inline constexpr std::string_view kGoodCredentials = "cm9vdDp0dXZr";  // root:tuvk

inline std::string GetImage(std::string_view query,
                            std::string_view credentials = kGoodCredentials) {
    return "GET /getimage?" + std::string(query) +
           " HTTP/1.0\r\nUser-Agent: ActiveX(Tallivox)\r\nAuthorization: Basic " +
           std::string(credentials) + "\r\n\r\n";
}

class CameraClient {
public:
    // Connects; receiveBuffer, when given, is what the kernel keeps for a client that doesn't read.
    explicit CameraClient(std::uint16_t port, int receiveBuffer = 0)
        : connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        if (receiveBuffer > 0) {
            setsockopt(connection.Get(), SOL_SOCKET, SO_RCVBUF, &receiveBuffer,
                       sizeof receiveBuffer);
        }
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        connected = connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address),
                            sizeof address) == 0;
    }

    bool IsConnected() const { return connected; }

    void Send(std::string_view bytes) {
        ASSERT_EQ(static_cast<std::size_t>(
                      send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL)),
                  bytes.size());
    }

    // Reads until that many bytes are there, or the connection ends.
    const std::string& ReadBytes(std::size_t count) {
        return ReadWhile([&] { return received.size() < count; });
    }

    // Reads until the text has occurred that many times, or the connection ends.
    const std::string& ReadUntil(std::string_view text, int times = 1) {
        return ReadWhile([&] {
            int found = 0;
            for (std::size_t at = 0; (at = received.find(text, at)) != std::string::npos; ++at) {
                ++found;
            }
            return found < times;
        });
    }

    // Reads everything up to the end of the connection; false when it doesn't come.
    bool ReadToEnd() {
        ReadWhile([] { return true; });
        return ended;
    }

    const std::string& Received() const { return received; }
    bool HasEnded() const { return ended; }

private:
    template <typename Condition>
    const std::string& ReadWhile(Condition more) {
        char bytes[65536];
        while (!ended && more()) {
            pollfd readable{connection.Get(), POLLIN, 0};
            if (poll(&readable, 1, kPatience) != 1) {
                ADD_FAILURE() << "nothing comes";
                break;
            }
            const ssize_t count = recv(connection.Get(), bytes, sizeof bytes, 0);
            if (count > 0) received.append(bytes, static_cast<std::size_t>(count));
            if (count <= 0) ended = true;
        }
        return received;
    }

    Descriptor connection;
    bool connected = false;
    bool ended = false;
    std::string received;
};

struct ReceivedPicture {
    std::string bytes;
    bool hasTime = false;
    SYSTEMTIME time{};
};

// The pictures that the program would see in an answer.
inline std::vector<ReceivedPicture> PicturesIn(std::string_view answer) {
    FramePool pool;
    MultipartParser parser;
    std::vector<ReceivedPicture> pictures;
    EXPECT_TRUE(pool.Init(kFrameCapacity, 2));
    parser.Init(pool.Acquire(), [&](FramePtr frame) {
        ReceivedPicture& picture = pictures.emplace_back();
        picture.bytes.assign(reinterpret_cast<const char*>(frame->Data()), frame->Length());
        picture.hasTime = frame->Time() != nullptr;
        if (picture.hasTime) picture.time = *frame->Time();
        parser.SetBuffer(std::move(frame));
    });
    parser.Feed({reinterpret_cast<const std::uint8_t*>(answer.data()), answer.size()});
    parser.SetBuffer(nullptr);
    return pictures;
}

inline std::string BytesOf(const Picture& picture) {
    return {picture.jpeg.begin(), picture.jpeg.end()};
}

inline SYSTEMTIME TimeOf(const PictureStamp& stamp) {
    return {.year = stamp.year,
            .month = stamp.month,
            .dayOfWeek = 0,
            .day = stamp.day,
            .hour = stamp.hour,
            .minute = stamp.minute,
            .second = stamp.second,
            .milliseconds = static_cast<std::uint16_t>(stamp.hundredths * 10)};
}

}  // namespace marvolen::test
