#pragma once

// What tests of a channel's connection share: a record that points at a loopback listener, a sink
// that keeps copies of the pictures, an owner that keeps the events.

#include "config/channel_info.h"
#include "net/channel_link.h"
#include "net/frame_receiver.h"
#include "net/net_event_owner.h"
#include "platform/text_field.h"
#include "platform/window.h"
#include "tests/support/event_loop.h"
#include "tests/support/loopback.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace marvolen::test {

inline constexpr std::string_view kStreamHead =
    "HTTP/1.0 200 OK\r\n"
    "Content-Type: multipart/x-mixed-replace;boundary=--myboundary\r\n\r\n--myboundary\r\n";

inline std::string Part(std::string_view picture) {
    return "Content-Type: image/jpeg\r\nStamp: 7d3010f 0c1e2d 32 0\n\n" + std::string(picture) +
           "\r\n--myboundary\r\n";
}

class Sink : public FrameReceiver {
public:
    bool refuses = false;
    std::vector<std::string> pictures;
    std::vector<FramePtr> kept;
    std::size_t keep = 0;  // frames to keep, which no receiver of the program does
    std::function<void()> duringDeliver;

    bool IsStarted() const { return active; }

    bool Start(ChannelLink* startingLink) override {
        return !refuses && FrameReceiver::Start(startingLink);
    }
    void Deliver(FramePtr frame) override {
        const auto bytes = frame->Picture();
        pictures.emplace_back(bytes.begin(), bytes.end());
        if (kept.size() < keep) kept.push_back(std::move(frame));
        if (duringDeliver) duringDeliver();
    }
};

class Owner : public CWnd, public NetEventOwner {
public:
    std::vector<int> events;
    std::vector<const ChannelInfo*> records;
    std::function<void(int)> duringEvent;

    void PostNetEvent(int code, ChannelInfo* info) override {
        PostMessage(WM_NETEVENT, static_cast<WPARAM>(code), reinterpret_cast<LPARAM>(info));
    }

protected:
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) override {
        EXPECT_EQ(message, 0x464U);
        events.push_back(static_cast<int>(wParam));
        records.push_back(reinterpret_cast<const ChannelInfo*>(lParam));
        if (duringEvent) duringEvent(events.back());
    }
};

inline ChannelInfo MakeRecord(std::string_view host, std::uint16_t port) {
    ChannelInfo record{};
    SetFieldText(record.host, host);
    SetFieldText(record.port, std::to_string(port));
    SetFieldText(record.userName, "root");
    SetFieldText(record.password, "tuvk");
    record.cameraIndex = 1;
    record.rateIndex = 2;
    return record;
}

inline constexpr std::string_view kRequest =
    "GET /getimage?camera=2&fmt=full&delay=7 HTTP/1.0\r\n"
    "User-Agent: ActiveX(Tallivox)\r\n"
    "Authorization: Basic cm9vdDp0dXZr\r\n\r\n";

}  // namespace marvolen::test
