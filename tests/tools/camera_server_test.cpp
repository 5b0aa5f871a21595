#include "tools/camera_server/camera_server.h"

#include "tests/support/loopback.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_answer.h"
#include "tools/camera_server/control.h"
#include "tools/camera_server/pattern_pictures.h"

namespace marvolen {
namespace {

using test::LoopbackPeer;

const std::string kGet = "GET /getimage HTTP/1.0\r\nAuthorization: Basic cm9vdDp0dXZr\r\n\r\n";
constexpr std::string_view kPartEnd = "\r\n--myboundary\r\n";
constexpr PictureStamp kStamp{2003, 1, 15, 12, 30, 45, 50, 20};

std::string BytesOf(const PicturePtr& picture) {
    return {picture->jpeg.begin(), picture->jpeg.end()};
}

// Whether a fault has made of a picture what it should.
bool IsDamaged(FaultKind kind, const std::string& original, const std::string& sent) {
    if (kind == FaultKind::Truncate) return sent == original.substr(0, original.size() / 2);
    if (kind == FaultKind::Oversize) {
        // Comments lead to where the picture goes on.
        std::size_t at = 2;
        while (sent.substr(at, 4) == "\xFF\xFE\xFF\xFF") at += 2 + 0xFFFF;
        return at > kOversizeBytes && sent.substr(at) == original.substr(2);
    }
    return sent != original && sent.size() == original.size() && sent.starts_with("\xFF\xD8");
}

TEST(CameraAnswerTest, FaultsStrikeEveryNthPartAndDoWhatTheySay) {
    PatternPictures source(900);
    for (const char* text : {"none", "garbage", "no-stamp:3", "stamp-back:4", "oversize:5",
                             "truncate:2", "bit-flip:1"}) {
        const Fault fault = ParseFault(text).value();
        EXPECT_EQ(FaultText(fault), text);
        for (std::uint64_t n = 1; n <= 12; ++n) {
            const PicturePtr whole = source.At({}, n);
            const AnswerPart part = MakeStreamPart(fault, n, whole, kStamp);
            const bool damaged = part.picture != whole;
            const bool struck = !part.stamped || part.stamp != kStamp || damaged;
            EXPECT_EQ(struck, fault.count > 0 && n % fault.count == 0) << text << ' ' << n;
            EXPECT_EQ(part.stamp.hour, struck && fault.kind == FaultKind::StampBack ? 11 : 12);
            EXPECT_EQ(part.after.size() > 64, fault.kind == FaultKind::Garbage);
            EXPECT_TRUE(!damaged || IsDamaged(fault.kind, BytesOf(whole), BytesOf(part.picture)));
        }
    }
    const SentPicture sent{3, 12, true, kStamp, {}, MakePicture({'a'})};
    EXPECT_EQ(IndexLine(sent), "3 12 7d3010f 0c1e2d 32 14 1 af63dc4c8601ec8c");
}

class CameraServerTest : public ::testing::Test {
protected:
    // Two cameras that are a good deal quicker than real ones.
    void Serve(CameraServerOptions options = {}, std::size_t averageBytes = 3000) {
        options.channelCount = 2;
        options.period = std::chrono::milliseconds(2);
        server = std::make_unique<CameraServer>(options,
                                                std::make_shared<PatternPictures>(averageBytes));
        ASSERT_TRUE(server->Start()) << server->Error();
    }

    LoopbackPeer Watch(int channel, const std::string& request = kGet, int receiveBuffer = 0) {
        LoopbackPeer client(server->Port(channel), receiveBuffer);
        client.Send(request);
        return client;
    }

    // The answer, the channel's last, is byte for byte what the account says. Ends the server.
    void ExpectAccountedFor(int channel, const std::string& answer) {
        server->Stop();
        std::string wire =
            "HTTP/1.0 200 OK\r\nServer: Marvolen camera server\r\nPragma: no-cache\r\n"
            "Content-Type: multipart/x-mixed-replace;boundary=--myboundary\r\n\r\n--myboundary\r\n";
        const std::vector<SentPicture> account = server->SentPictures(channel);
        for (const SentPicture& sent : account) {
            if (sent.connection != account.back().connection) continue;
            wire.append("Content-Type: image/jpeg\r\n");
            wire.append(sent.stamped ? "Stamp: " + StampText(sent.stamp) + "\n\n" : "\r\n");
            wire.append(BytesOf(sent.picture)).append(kPartEnd);
        }
        EXPECT_TRUE(wire.starts_with(answer.substr(0, answer.rfind(kPartEnd) + kPartEnd.size())));
    }

    std::unique_ptr<CameraServer> server;
};

TEST_F(CameraServerTest, TheAccountInMemoryAndInFilesIsWhatWasReceived) {
    const test::TemporaryFolder folder;
    std::string log;
    Serve({.faults = {MakeFault(FaultKind::BitFlip), MakeFault(FaultKind::NoStamp)},
           .sentDir = "sent",
           .log = [&log](const std::string& line) { log += line + '\n'; }});
    const std::string flipped = Watch(0).ReceiveUntil(kPartEnd, 30);
    ExpectAccountedFor(1, Watch(1).ReceiveUntil(kPartEnd, 30));
    ExpectAccountedFor(0, flipped);
    EXPECT_EQ(server->Requests(0), std::vector{kGet});
    std::string index;
    for (const SentPicture& sent : server->SentPictures(0)) {
        const std::string line = IndexLine(sent);
        const std::string name = line.substr(line.size() - 16) + ".jpg";
        EXPECT_EQ(test::ReadWholeFile("sent/pictures/" + name), BytesOf(sent.picture));
        index += line + '\n';
    }
    EXPECT_EQ(test::ReadWholeFile("sent/ch01.index"), index);
    EXPECT_NE(log.find("\"GET /getimage HTTP/1.0\" credentials accepted, status 200"), log.npos);
    EXPECT_EQ(log.find("cm9v"), log.npos) << "the password";
}

TEST_F(CameraServerTest, RefusesAllButProperRequestsAndAPortInUse) {
    Serve({.singlePictures = {false, true}});
    const std::pair<const char*, std::string> cases[]{
        {"401", "GET /getimage HTTP/1.0\r\nAuthorization: Basic cm9vdDpyb290\r\n\r\n"},
        {"400", std::string(9000, 'x')}};
    for (const auto& [status, request] : cases) {
        LoopbackPeer client = Watch(0, request);
        EXPECT_TRUE(client.IsEnded());
        EXPECT_TRUE(client.Received().starts_with(std::string("HTTP/1.0 ") + status));
    }
    LoopbackPeer single = Watch(1);
    EXPECT_TRUE(single.IsEnded());
    const std::string picture = BytesOf(server->SentPictures(1).at(0).picture);
    const std::string length = std::to_string(picture.size());
    EXPECT_TRUE(single.Received().ends_with(
        "\r\nContent-Type: image/jpeg\r\nContent-Length: " + length + "\r\n\r\n" + picture));
    CameraServer second({.basePort = server->Port(0)}, std::make_shared<PatternPictures>());
    EXPECT_FALSE(second.Start());
    EXPECT_TRUE(second.Error().starts_with("can't listen on 127.0.0.1:"));
}

TEST_F(CameraServerTest, ASlowClientLosesPicturesAndGetsTheRestWhole) {
    Serve({.sendBufferBytes = 8192}, 60000);
    LoopbackPeer sleeper = Watch(0, kGet, 4096);
    Watch(1).ReceiveUntil(kPartEnd, 30);
    EXPECT_GT(server->Stats(0).skipped, 0U);
    EXPECT_LT(server->Stats(0).sent, 3U) << "buffered without a limit";
    ExpectAccountedFor(0, sleeper.ReceiveUntil(kPartEnd, 4));
    EXPECT_GT(server->SentPictures(0).at(2).stamp.counter, 2U) << "skipped ones are counted";
}

TEST_F(CameraServerTest, FaultsBeginAndEndWhileItRuns) {
    Serve({.faults = {MakeFault(FaultKind::Refuse), {FaultKind::StallAfter, 4}}});
    EXPECT_FALSE(LoopbackPeer(server->Port(0)).IsConnected());
    LoopbackPeer stalled = Watch(1);
    ASSERT_TRUE(server->WaitForSent(1, 4));
    server->SetFault(0, {FaultKind::CloseAfter, 5});
    EXPECT_TRUE(Watch(0).IsEnded());
    EXPECT_EQ(server->Stats(0).sent, 5U);
    EXPECT_EQ(server->Stats(1).sent, 4U);
    server->SetFault(1, {FaultKind::StallAfter, 3});
    ASSERT_TRUE(server->WaitForSent(1, 7)) << "counted anew with the new fault";

    server->SetFault(0, MakeFault(FaultKind::ContentType));
    const std::string page = Watch(0).ReceiveUntil("</html>");
    EXPECT_NE(page.find("\r\nContent-Type: text/html\r\n"), page.npos);
    server->SetFault(0, MakeFault(FaultKind::Silent));
    LoopbackPeer silent = Watch(0);
    ASSERT_TRUE(server->WaitForRequests(0, 3));
    server->SetFault(1, {});
    ASSERT_TRUE(server->WaitForSent(1, 30));
    EXPECT_EQ(server->Stats(0).sent, 5U) << "web page and silence hold no picture";
    server->SetFault(0, {FaultKind::Trickle, 2000000});
    const std::string trickled = silent.ReceiveUntil(kPartEnd, 4);
    EXPECT_EQ(RunCommand(" fault  2 close ", *server, 2).text, "ok\n");
    EXPECT_TRUE(stalled.IsEnded());
    const std::string stats = RunCommand("stats", *server, 2).text;
    EXPECT_NE(stats.find(" skipped "), stats.npos) << stats;
    EXPECT_TRUE(stats.ends_with("\nok\n")) << stats;
    EXPECT_TRUE(RunCommand("fault 3 none", *server, 2).text.starts_with("error: "));
    ExpectAccountedFor(0, trickled);
}

}  // namespace
}  // namespace marvolen
