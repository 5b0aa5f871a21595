#include "net/net_channel.h"

#include "net/stream_client.h"
#include "net/stream_source.h"
#include "tests/net/channel_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

using test::ComesToRest;
using test::LoopbackListener;
using test::LoopbackPeer;
using test::Part;
using test::WaitUntil;

using Events = std::vector<int>;

class NetChannelTest : public ::testing::Test {
protected:
    bool Open() { return channel.Open(&record, &sink, &owner); }
    // Opens, and reads the request.
    void Connect() {
        ASSERT_TRUE(Open());
        camera = listener.Accept();
        ASSERT_TRUE(WaitUntil([&] { return !owner.events.empty(); }));
        ASSERT_EQ(owner.events, Events{NETEVENT_CONNECT});
        ASSERT_EQ(camera.ReceiveUntil("\r\n\r\n"), test::kRequest);
    }
    void ExpectEvents(const Events& expected) {
        ASSERT_TRUE(WaitUntil([&] { return owner.events.size() >= expected.size(); }));
        EXPECT_TRUE(ComesToRest());
        EXPECT_EQ(owner.events, expected);
        for (const ChannelInfo* told : owner.records) EXPECT_EQ(told, &record);
    }
    void ExpectPictures(const std::vector<std::string>& expected) {
        EXPECT_TRUE(WaitUntil([&] { return sink.pictures.size() >= expected.size(); }));
        EXPECT_EQ(sink.pictures, expected);
    }

    LoopbackListener listener;
    LoopbackPeer camera;
    ChannelInfo record = test::MakeRecord("127.0.0.1", listener.Port());
    test::Owner owner;
    test::Sink sink;
    NetChannel channel;
};

TEST_F(NetChannelTest, StreamsPicturesToTheSinkUntilTheCameraCloses) {
    Connect();
    EXPECT_TRUE(sink.IsStarted());
    const std::string large(150000, 'L');
    std::string stream(test::kStreamHead);
    stream += Part("first") + Part(large) + Part("last");
    camera.Send(stream.substr(0, stream.size() - 3));
    ExpectPictures({"first", large});
    EXPECT_TRUE(ComesToRest());
    camera.Send("y");  // the boundary's last byte alone
    ExpectPictures({"first", large, "last"});
    owner.duringEvent = [&](int code) { EXPECT_TRUE(code != NETEVENT_CLOSE || Open()); };
    camera.Close();
    ExpectEvents({NETEVENT_CONNECT, NETEVENT_CLOSE, NETEVENT_CONNECT});
    camera = listener.Accept();
    EXPECT_EQ(camera.ReceiveUntil("\r\n\r\n"), test::kRequest) << "reopened from within an event";
}

TEST_F(NetChannelTest, WhatCannotStartFailsWithoutAnEvent) {
    for (const auto& [host, port] : {std::pair("", listener.Port()),
                                     {"a@b", listener.Port()},
                                     {"127.0.0.1", std::uint16_t{0}}}) {
        record = test::MakeRecord(host, port);
        EXPECT_FALSE(Open()) << host;
    }
    record = test::MakeRecord("127.0.0.1", listener.Port());
    sink.refuses = true;
    EXPECT_FALSE(Open());
    ExpectEvents({});
    sink.refuses = false;
    Connect();  // nothing is left of the failed attempts
}

TEST_F(NetChannelTest, GoesOnWhenEverySlotIsOut) {
    Connect();
    sink.keep = 9;  // all but the one that the parser fills
    std::string stream(test::kStreamHead);
    for (int i = 0; i < 12; ++i) stream += Part("picture");
    camera.Send(stream + Part(std::string(3000, 'm')));
    ExpectPictures(std::vector<std::string>(9, "picture"));
    EXPECT_TRUE(ComesToRest());
    sink.keep = 0;
    sink.kept.clear();
    camera.Send(Part("after"));
    ASSERT_TRUE(WaitUntil([&] { return sink.pictures.size() > 9; }));
    EXPECT_EQ(sink.pictures.back(), "after");
}

class RecordingLink : public ChannelLink {
public:
    Events events;
    void OnEvent(int code) override { events.push_back(code); }
};

TEST(StreamSourceTest, IsConnectedUntilAReceiveFailsOrItIsStoppedFromWithinADelivery) {
    for (const bool stops : {false, true}) {
        LoopbackListener listener;
        RecordingLink link;
        test::Sink sink;
        StreamSource source;
        ASSERT_TRUE(source.Init(test::MakeRecord("127.0.0.1", listener.Port())));
        source.SetNext(&sink);
        ASSERT_TRUE(source.Start(&link));
        EXPECT_FALSE(source.HasSettled() || source.IsConnected());
        LoopbackPeer camera = listener.Accept();
        ASSERT_TRUE(WaitUntil([&] { return source.IsConnected(); }));
        EXPECT_TRUE(source.HasSettled());
        sink.duringDeliver = [&] { source.Stop(); };
        stops ? camera.Send(std::string(test::kStreamHead) + Part("stop")) : camera.Reset();
        ASSERT_TRUE(WaitUntil([&] { return !source.IsConnected(); }));
        EXPECT_TRUE(ComesToRest());
        EXPECT_EQ(link.events,
                  stops ? Events{NETEVENT_CONNECT} : (Events{NETEVENT_CONNECT, NETEVENT_ERROR}));
        EXPECT_EQ(sink.IsStarted(), !stops);
        EXPECT_TRUE(!stops || camera.IsEnded());
    }
}

// A client whose notifications the test makes up or acts upon.
class Client : public StreamClient {
public:
    using StreamClient::OnConnect;
};

using Notification = StreamClient::Notification;

TEST(StreamClientTest, TimeOutSettlesAndOtherFailuresDoNot) {
    LoopbackListener listener;
    for (const int error : {10060, 111, 0}) {
        std::vector<Notification> codes;
        Client client;
        const std::string url = "http://a:b@127.0.0.1:" + std::to_string(listener.Port()) + "/x";
        ASSERT_TRUE(client.Connect(url, [&](Notification code) { codes.push_back(code); }));
        client.OnConnect(error);
        ASSERT_EQ(codes.size(), 1U);
        EXPECT_EQ(codes[0], error == 0 ? Notification::Connected : Notification::ConnectFailed);
        EXPECT_EQ(client.HasSettled(), error != 111);
        EXPECT_EQ(client.IsConnected(), error == 0);
        client.Close();
        EXPECT_FALSE(client.IsConnected());
    }
}

TEST(StreamClientTest, TakesOnlyHttp) {
    const auto never = [](Notification) { FAIL(); };
    for (const std::string url : {"HTTP://a:b@127.0.0.1:80/", "https://a:b@127.0.0.1:80/",
                                  "http://a:b@127.0.0.1:/", "http://127.0.0.1:80/", ""}) {
        StreamClient client;
        EXPECT_FALSE(client.Connect(url, never)) << url;
    }
    EXPECT_TRUE(ComesToRest());
}

}  // namespace
}  // namespace marvolen
