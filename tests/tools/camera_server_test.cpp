#include "tools/camera_server/camera_server.h"

#include "tests/support/process_resources.h"
#include "tests/support/temporary_folder.h"
#include "tests/tools/camera_client.h"
#include "tools/camera_server/pattern_pictures.h"

#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using namespace std::chrono_literals;
using test::BytesOf;
using test::CameraClient;
using test::GetImage;
using test::PicturesIn;
using test::ReceivedPicture;
using test::TimeOf;

constexpr std::string_view kBoundary = "\r\n--myboundary";

class CameraServerTest : public ::testing::Test {
protected:
    // Cameras that are a good deal quicker than real ones.
    void Serve(CameraServerOptions options = {}, std::size_t averageBytes = 3000) {
        if (options.channelCount == 16) options.channelCount = 2;  // enough for most
        options.period = 2ms;
        server = std::make_unique<CameraServer>(options,
                                                std::make_shared<PatternPictures>(averageBytes));
        ASSERT_TRUE(server->Start()) << server->Error();
    }

    std::unique_ptr<CameraClient> Watch(int channel, std::string_view query = "camera=1&fmt=full") {
        auto client = std::make_unique<CameraClient>(server->Port(channel));
        EXPECT_TRUE(client->IsConnected());
        client->Send(GetImage(query));
        return client;
    }

    // Every picture in the answer is the one the account names at its place, with its stamp.
    static void ExpectAccountedFor(const std::vector<ReceivedPicture>& pictures,
                                   const std::vector<SentPicture>& sent) {
        ASSERT_LE(pictures.size(), sent.size());
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            EXPECT_EQ(pictures[i].bytes, BytesOf(*sent[i].picture)) << i;
            EXPECT_EQ(pictures[i].time, TimeOf(sent[i].stamp)) << i;
            EXPECT_EQ(sent[i].number, i + 1);
        }
    }

    std::unique_ptr<CameraServer> server;
};

TEST_F(CameraServerTest, AStreamIsWhatTheAccountSaysPictureForPicture) {
    Serve();
    const auto client = Watch(1, "camera=3&fmt=qsif");
    const auto pictures = PicturesIn(client->ReadUntil(kBoundary, 41));
    ASSERT_GE(pictures.size(), 40U);
    ASSERT_TRUE(server->WaitForSent(1, pictures.size()));
    const auto sent = server->SentPictures(1);
    ExpectAccountedFor(pictures, sent);
    EXPECT_EQ(sent[0].view.channel, 1);
    EXPECT_EQ(sent[0].view.camera, 2);
    EXPECT_EQ(sent[0].view.size, PictureSize::Qsif);
    EXPECT_LT(sent[0].stamp.counter, sent[39].stamp.counter);
    EXPECT_TRUE(server->SentPictures(0).empty());
    EXPECT_EQ(server->Stats(1).sent, server->SentPictures(1).size());
}

TEST_F(CameraServerTest, RequestsAreKeptAsReceivedAndLoggedWithoutTheirPassword) {
    std::vector<std::string> lines;
    Serve({.log = [&lines](const std::string& line) { lines.push_back(line); }});
    const std::string request = GetImage("camera=2&fmt=full&delay=7");
    CameraClient client(server->Port(0));
    for (const char byte : request) client.Send({&byte, 1});
    ASSERT_TRUE(server->WaitForRequests(0, 1));
    EXPECT_EQ(server->Requests(0), std::vector<std::string>{request});
    server->Stop();
    std::string log;
    for (const std::string& line : lines) log += line + '\n';
    EXPECT_NE(log.find("\"GET /getimage?camera=2&fmt=full&delay=7 HTTP/1.0\" credentials accepted"),
              std::string::npos)
        << log;
    EXPECT_NE(log.find("  User-Agent: "), std::string::npos) << log;
    EXPECT_NE(log.find("  Authorization: (accepted)\n"), std::string::npos) << log;
    EXPECT_EQ(log.find(test::kGoodCredentials), std::string::npos);
    EXPECT_EQ(log.find("tuvk"), std::string::npos);
}

TEST_F(CameraServerTest, NothingIsKeptThatNobodyWants) {
    Serve({.keepSent = false});
    const auto client = Watch(0);
    ASSERT_TRUE(server->WaitForSent(0, 2));
    EXPECT_TRUE(server->Requests(0).empty());
    EXPECT_TRUE(server->SentPictures(0).empty());
    EXPECT_EQ(server->Stats(0).requests, 1U);
}

TEST_F(CameraServerTest, WrongCredentialsAndRequestsGetTheirStatusAndNoPicture) {
    Serve();
    const std::pair<std::string, std::string> cases[] = {
        {GetImage("camera=1", "cm9vdDpyb290"), "401"},  // root:root
        {"GET /getimage HTTP/1.0\r\n\r\n", "401"},
        {"GET /other HTTP/1.0\r\n\r\n", "404"},
        {GetImage("camera=9"), "400"},
        {std::string(9000, 'x'), "400"}};
    for (const auto& [request, status] : cases) {
        CameraClient client(server->Port(0));
        client.Send(request);
        EXPECT_TRUE(client.ReadToEnd());
        EXPECT_EQ(client.Received().find("HTTP/1.0 " + status), 0U) << request.substr(0, 60);
    }
    EXPECT_EQ(server->Stats(0).requests, 5U);
    EXPECT_EQ(server->Stats(0).sent, 0U);

    Serve({.checkCredentials = false});
    CameraClient anybody(server->Port(0));
    anybody.Send("GET /getimage HTTP/1.0\r\n\r\n");
    EXPECT_FALSE(PicturesIn(anybody.ReadUntil(kBoundary, 2)).empty());
}

TEST_F(CameraServerTest, TheSingleFormIsAPictureAndTheEnd) {
    Serve({.singlePictures = {false, true}});
    const auto client = Watch(1);
    ASSERT_TRUE(client->ReadToEnd());
    const auto pictures = PicturesIn(client->Received());
    ASSERT_EQ(pictures.size(), 1U);
    const auto sent = server->SentPictures(1);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(pictures[0].bytes, BytesOf(*sent[0].picture));
    EXPECT_FALSE(sent[0].stamped);
}

TEST_F(CameraServerTest, DelaySlowsAConnectionDown) {
    Serve();
    const auto slow = Watch(0, "camera=1&delay=100000");
    const auto quick = Watch(1);
    ASSERT_TRUE(server->WaitForSent(0, 1));
    ASSERT_TRUE(server->WaitForSent(1, 50));
    EXPECT_EQ(server->Stats(0).sent, 1U) << "the next is due in a quarter of an hour";
}

TEST_F(CameraServerTest, ASlowClientLosesPicturesAndGetsTheRestWhole) {
    Serve({.sendBufferBytes = 8192}, 60000);
    CameraClient sleeper(server->Port(0), 4096);
    sleeper.Send(GetImage("camera=1"));
    const auto quick = Watch(1);
    quick->ReadUntil(kBoundary, 30);
    ASSERT_TRUE(server->WaitForSent(1, 29));
    EXPECT_GT(server->Stats(0).skipped, 0U);
    EXPECT_LT(server->Stats(0).sent, 3U) << "buffered without a limit";
    const auto pictures = PicturesIn(sleeper.ReadBytes(400000));
    ASSERT_GT(pictures.size(), 3U);
    const auto sent = server->SentPictures(0);
    ExpectAccountedFor(pictures, sent);
    EXPECT_GT(sent[1].stamp.counter, sent[0].stamp.counter + 1) << "skipped ones are counted";
}

TEST_F(CameraServerTest, ARefusedPortStaysTheChannelsAndOpensAgain) {
    Serve({.faults = {MakeFault(FaultKind::Refuse)}});
    const std::uint16_t port = server->Port(0);
    for (int round = 0; round < 3; ++round) {
        EXPECT_FALSE(CameraClient(port).IsConnected());
        server->SetFault(0, {});
        EXPECT_EQ(server->Port(0), port);
        const auto client = Watch(0);
        client->ReadUntil(kBoundary, 2);
        server->SetFault(0, MakeFault(FaultKind::Refuse));
        EXPECT_GE(PicturesIn(client->ReadUntil(kBoundary, 5)).size(), 3U) << "open ones go on";
    }
}

TEST_F(CameraServerTest, SilenceEndsWhenTheFaultDoes) {
    Serve({.faults = {MakeFault(FaultKind::Silent)}});
    const auto client = Watch(0);
    ASSERT_TRUE(server->WaitForRequests(0, 1));
    const auto other = Watch(1);
    other->ReadUntil(kBoundary, 20);
    EXPECT_EQ(server->Stats(0).sent, 0U);
    EXPECT_EQ(server->Stats(0).openConnections, 1U);
    server->SetFault(0, {});
    EXPECT_GE(PicturesIn(client->ReadUntil(kBoundary, 4)).size(), 2U);
}

TEST_F(CameraServerTest, ClosingAtOnceAndDropping) {
    Serve({.faults = {MakeFault(FaultKind::Close)}});
    CameraClient rejected(server->Port(0));
    EXPECT_TRUE(rejected.IsConnected());
    EXPECT_TRUE(rejected.ReadToEnd());
    EXPECT_EQ(rejected.Received(), "");

    const auto dropped = Watch(1);
    dropped->ReadUntil(kBoundary, 2);
    server->Drop(1);
    EXPECT_EQ(server->Stats(1).openConnections, 0U);
    EXPECT_TRUE(dropped->ReadToEnd());
    const auto again = Watch(1);
    again->ReadUntil(kBoundary, 2);
    server->SetFault(1, MakeFault(FaultKind::Close));
    EXPECT_TRUE(again->ReadToEnd());
}

TEST_F(CameraServerTest, ClosingAndStallingAfterACountOfPictures) {
    Serve({.faults = {{FaultKind::CloseAfter, 5}, {FaultKind::StallAfter, 4}}});
    const auto closing = Watch(0);
    ASSERT_TRUE(closing->ReadToEnd());
    EXPECT_EQ(PicturesIn(closing->Received()).size(), 5U);
    EXPECT_EQ(server->Stats(0).sent, 5U);

    const auto stalling = Watch(1);
    ASSERT_TRUE(server->WaitForSent(1, 4));
    server->SetFault(0, {FaultKind::CloseAfter, 0});
    const auto empty = Watch(0);
    ASSERT_TRUE(empty->ReadToEnd());
    EXPECT_EQ(empty->Received().find("HTTP/1.0 200"), 0U);
    EXPECT_TRUE(PicturesIn(empty->Received()).empty());
    EXPECT_EQ(server->Stats(1).sent, 4U);
    server->SetFault(1, {FaultKind::StallAfter, 3});
    ASSERT_TRUE(server->WaitForSent(1, 7)) << "counted anew with the new fault";
    EXPECT_GE(PicturesIn(stalling->ReadUntil(kBoundary, 8)).size(), 7U);
}

TEST_F(CameraServerTest, ATrickleIsTheSameStreamByteByByte) {
    Serve({.faults = {{FaultKind::Trickle, 200000}}}, 200);
    const auto client = Watch(0);
    const auto pictures = PicturesIn(client->ReadUntil(kBoundary, 6));
    ASSERT_GE(pictures.size(), 4U);
    ASSERT_TRUE(server->WaitForSent(0, pictures.size()));
    ExpectAccountedFor(pictures, server->SentPictures(0));
}

TEST_F(CameraServerTest, AForeignContentTypeHoldsTheConnectionWithoutPictures) {
    Serve({.faults = {MakeFault(FaultKind::ContentType)}});
    const auto client = Watch(0);
    client->ReadUntil("</html>");
    const auto other = Watch(1);
    other->ReadUntil(kBoundary, 20);
    EXPECT_EQ(server->Stats(0).sent, 0U);
    EXPECT_EQ(server->Stats(0).openConnections, 1U);
    EXPECT_FALSE(client->HasEnded());
}

TEST_F(CameraServerTest, DamageIsInTheAccountToo) {
    Serve({.faults = {{FaultKind::BitFlip, 2}, {FaultKind::NoStamp, 2}}});
    const auto flipped = Watch(0);
    const auto pictures = PicturesIn(flipped->ReadUntil(kBoundary, 20));
    ASSERT_TRUE(server->WaitForSent(0, pictures.size()));
    ExpectAccountedFor(pictures, server->SentPictures(0));

    const auto unstamped = Watch(1);
    const auto stamped = PicturesIn(unstamped->ReadUntil(kBoundary, 20));
    std::vector<std::string> expected;
    for (const SentPicture& sent : server->SentPictures(1)) {
        if (sent.stamped) expected.push_back(BytesOf(*sent.picture));
    }
    ASSERT_LE(stamped.size(), expected.size());
    for (std::size_t i = 0; i < stamped.size(); ++i) EXPECT_EQ(stamped[i].bytes, expected[i]);
}

TEST_F(CameraServerTest, TheSentFolderHoldsTheAccountAndThePictures) {
    const test::TemporaryFolder folder;
    Serve({.sentDir = "sent"});
    const auto client = Watch(0);
    client->ReadUntil(kBoundary, 10);
    server->Stop();
    const auto sent = server->SentPictures(0);
    ASSERT_GE(sent.size(), 9U);
    std::istringstream index(test::ReadWholeFile("sent/ch01.index"));
    for (const SentPicture& picture : sent) {
        std::string line;
        ASSERT_TRUE(std::getline(index, line));
        EXPECT_EQ(line, IndexLine(picture));
        const std::string hash = line.substr(line.rfind(' ') + 1);
        EXPECT_EQ(test::ReadWholeFile("sent/pictures/" + hash + ".jpg"), BytesOf(*picture.picture));
    }
    std::string more;
    EXPECT_FALSE(std::getline(index, more)) << more;
    EXPECT_EQ(test::ReadWholeFile("sent/ch02.index"), "");
}

TEST_F(CameraServerTest, AnIndexLineIsFixed) {
    const SentPicture sent{.connection = 3,
                           .number = 12,
                           .stamped = true,
                           .stamp = {.year = 2003,
                                     .month = 1,
                                     .day = 15,
                                     .hour = 12,
                                     .minute = 30,
                                     .second = 45,
                                     .hundredths = 50,
                                     .counter = 20},
                           .view = {},
                           .picture = MakePicture({'a'})};
    EXPECT_EQ(IndexLine(sent), "3 12 7d3010f 0c1e2d 32 14 1 af63dc4c8601ec8c");
    SentPicture bare = sent;
    bare.stamped = false;
    EXPECT_EQ(IndexLine(bare), "3 12 - - - - 1 af63dc4c8601ec8c");
}

TEST_F(CameraServerTest, ImpossibleOptionsFailWithAReason) {
    const auto pictures = std::make_shared<PatternPictures>();
    const auto errorOf = [&](CameraServerOptions options) {
        CameraServer wrong(std::move(options), pictures);
        EXPECT_FALSE(wrong.Start());
        return wrong.Error();
    };
    EXPECT_NE(errorOf({.channelCount = 17}), "");
    EXPECT_NE(errorOf({.basePort = 65530}), "");
    EXPECT_NE(errorOf({.address = "no address"}), "");
    EXPECT_NE(errorOf({.sentDir = "/proc/nowhere"}), "");
    Serve();
    EXPECT_NE(errorOf({.basePort = server->Port(0), .channelCount = 1}).find("can't listen"),
              std::string::npos);
    EXPECT_EQ(server->Port(2), 0);
    EXPECT_EQ(server->Stats(-1).sent, 0U);
    server->SetFault(7, MakeFault(FaultKind::Close));
    server->Drop(7);
}

TEST_F(CameraServerTest, NothingIsLeftBehind) {
    const auto descriptors = test::OpenDescriptors();
    const auto threads = test::Threads();
    for (int round = 0; round < 3; ++round) {
        Serve({.channelCount = 15});
        const auto client = Watch(round);
        client->ReadUntil(kBoundary, 2);
        server->Stop();
        EXPECT_TRUE(client->ReadToEnd());
        EXPECT_FALSE(CameraClient(server->Port(0)).IsConnected());
        server.reset();
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_EQ(test::Threads(), threads);
}

}  // namespace
}  // namespace marvolen
