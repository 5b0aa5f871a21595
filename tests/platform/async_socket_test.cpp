#include "platform/async_socket.h"

#include "platform/host_resolver.h"
#include "tests/support/event_loop.h"
#include "tests/support/process_resources.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace marvolen {
namespace {

using test::ComesToRest;
using test::WaitUntil;

// Writes down what it is told. Reads like the program does: one receive a notification.
class RecordingSocket : public CAsyncSocket {
public:
    std::vector<int> connects;  // the errors
    int receives = 0, closes = 0;
    int lets = 0;  // so many notifications pass without a receive
    std::string received;
    std::function<void()> during = [] {};  // every notification; may destroy the socket

    std::ptrdiff_t Say(std::string_view text) {
        return Send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    std::ptrdiff_t ReceiveOnce() {
        std::uint8_t buffer[2003];
        const std::ptrdiff_t size = Receive(buffer);
        if (size > 0) received.append(buffer, buffer + size);
        return size;
    }

protected:
    void OnConnect(int error) override {
        connects.push_back(error);
        Run();
    }
    void OnReceive() override {
        ++receives;
        if (--lets < 0) ReceiveOnce();
        Run();
    }
    void OnClose() override {
        ++closes;
        Run();
    }

private:
    // A copy runs, as it may destroy the socket.
    void Run() const {
        const auto copy = during;
        copy();
    }
};

class AsyncSocketTest : public ::testing::Test {
protected:
    void BeginConnect(std::string_view host, std::uint16_t port) {
        socket = std::make_unique<RecordingSocket>();
        ASSERT_TRUE(socket->Create() && socket->Connect(host, port));
        ASSERT_TRUE(socket->connects.empty()) << "reported from within Connect";
    }
    void Connect() {
        BeginConnect("127.0.0.1", listener.Port());
        peer = listener.Accept();
        ASSERT_TRUE(WaitUntil([&] { return socket->connects == std::vector{0}; }));
    }
    void ExpectConnectError(int error) {
        ASSERT_TRUE(WaitUntil([&] { return !socket->connects.empty(); }));
        EXPECT_TRUE(ComesToRest());
        EXPECT_EQ(socket->connects, std::vector{error});
    }
    test::LoopbackListener listener;
    test::LoopbackPeer peer;
    std::unique_ptr<RecordingSocket> socket;
};

TEST_F(AsyncSocketTest, ReportsEverythingBeforeTheEndThenTheEndOnceAndRests) {
    Connect();
    EXPECT_EQ(socket->ReceiveOnce(), -1);
    EXPECT_EQ(socket->GetLastError(), kWouldBlock);
    EXPECT_TRUE(ComesToRest()) << "a silent peer costs nothing";
    peer.SendUrgent('!');
    ASSERT_TRUE(WaitUntil([&] { return socket->received == "!"; }));
    EXPECT_TRUE(ComesToRest());
    const std::string rest(3 * 2003, 'x');
    peer.Send(rest);
    peer.SendUrgent('?');
    peer.Send("ab");
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return socket->closes > 0; }));
    EXPECT_EQ(socket->received, "!" + rest + "?ab") << "urgent bytes arrive in their place";
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(socket->closes, 1);

    Connect();
    peer.Reset();
    ASSERT_TRUE(WaitUntil([&] { return socket->receives > 0; }));
    EXPECT_EQ(socket->GetLastError(), ECONNRESET);
    EXPECT_TRUE(ComesToRest());
    EXPECT_TRUE(socket->receives == 1 && socket->closes == 0);
    EXPECT_TRUE(socket->Say("anybody?") == -1 && socket->GetLastError() == EPIPE) << "no signal";
}

TEST_F(AsyncSocketTest, FailuresToConnectAreReportedOnceAndMisuseAtOnce) {
    const std::uint16_t refusing = test::LoopbackListener().Port();  // closed by now
    BeginConnect("127.0.0.1", refusing);
    ExpectConnectError(ECONNREFUSED);
    BeginConnect("224.0.0.1", 80);  // multicast: known at once, but told the same way
    ExpectConnectError(ENETUNREACH);

    RecordingSocket misused;
    EXPECT_FALSE(misused.Connect("127.0.0.1", 80));
    EXPECT_EQ(misused.GetLastError(), ENOTSOCK);
    EXPECT_EQ(misused.Say("x"), -1);
    EXPECT_EQ(misused.ReceiveOnce(), -1);
    ASSERT_TRUE(misused.Create() && misused.Connect("127.0.0.1", listener.Port()));
    EXPECT_FALSE(misused.Create() || misused.Connect("127.0.0.1", listener.Port()));
    EXPECT_EQ(misused.GetLastError(), EALREADY) << "a second attempt";
    misused.Close();
    EXPECT_TRUE(ComesToRest());
    EXPECT_TRUE(misused.connects.empty()) << "closed while connecting";
}

TEST_F(AsyncSocketTest, MayCloseOrEndInsideItsOwnHandlers) {
    const std::function<void()> endings[] = {[&] { socket->Close(); }, [&] { socket.reset(); }};
    for (const auto& end : endings) {
        const auto ends = [&] { return WaitUntil([&] { return !socket || !socket->IsOpen(); }); };
        BeginConnect("127.0.0.1", listener.Port());
        socket->during = end;
        peer = listener.Accept();
        EXPECT_TRUE(ends() && peer.IsEnded());
        Connect();
        socket->during = end;
        peer.Send("last words");
        EXPECT_TRUE(ends());
        Connect();
        socket->during = end;
        peer.Close();
        EXPECT_TRUE(ends() && ComesToRest());
    }
}

// What is read ahead is reported piece by piece, to who is still there.
TEST_F(AsyncSocketTest, ReportsWhatItReadAheadUntilItIsClosedAndAgainToWhoReceivesNothing) {
    for (const bool ends : {false, true}) {
        Connect();
        socket->during = [&] {
            if (socket->receives == 3) ends ? socket.reset() : socket->Close();
        };
        peer.Send(std::string(20000, 'x'));
        ASSERT_TRUE(WaitUntil([&] { return !socket || !socket->IsOpen(); }));
        EXPECT_TRUE(ComesToRest() && (ends || socket->received.size() == 3 * 2003));
    }
    Connect();
    socket->lets = 3;
    peer.Send("late");
    ASSERT_TRUE(WaitUntil([&] { return socket->received == "late"; }));
    EXPECT_EQ(socket->receives, 4);
    socket->lets = 1;
    peer.Send("never");
    ASSERT_TRUE(WaitUntil([&] { return socket->receives == 5; }));
    socket.reset();
    EXPECT_TRUE(ComesToRest());
}

// A name server that answers when it is told to.
class HostNameTest : public AsyncSocketTest {
protected:
    HostNameTest() {
        before = ReplaceHostLookup([this](const std::string& name) {
            std::unique_lock guard(lock);
            asked.push_back(name);
            changed.wait(guard, [this] { return answers; });
            return address;
        });
    }
    ~HostNameTest() override {
        Answer(std::nullopt);
        ReplaceHostLookup(before);
        // A look-up's thread lives a little longer than its answer.
        EXPECT_TRUE(WaitUntil([&] { return test::Threads() <= threadsBefore; }));
    }
    void Answer(std::optional<Ipv4Address> theAddress) {
        const std::scoped_lock guard(lock);
        address = theAddress;
        answers = true;
        changed.notify_all();
    }
    std::size_t Asked() {
        const std::scoped_lock guard(lock);
        return asked.size();
    }
    const std::size_t threadsBefore = test::Threads();

private:
    HostLookup before;
    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::string> asked;
    bool answers = false;
    std::optional<Ipv4Address> address;
};

TEST_F(HostNameTest, ConnectsToTheAddressOfANameOrSaysThatThereIsNone) {
    BeginConnect("camera.example", listener.Port());
    Answer(0x7F000001);
    ExpectConnectError(0);
    Answer(std::nullopt);
    BeginConnect("nowhere.example", listener.Port());
    socket->during = [&] { socket.reset(); };
    EXPECT_TRUE(WaitUntil([&] { return socket == nullptr; })) << "told, it may end";
    EXPECT_EQ(ParseAddress("255.254.253.252"), 0xFFFEFDFC);
    for (const auto text :
         {"", "localhost", "1.2.3", "1.2.3.4.5", "256.1.1.1", "1.2.3.4 ", "::1"}) {
        EXPECT_FALSE(ParseAddress(text)) << text;
    }
    EXPECT_FALSE(ParseAddress(std::string_view("1.2.3.4\0.5", 10)));
}

TEST_F(HostNameTest, StuckLookUpsLeaveTheEventLoopFreeAndShareAThread) {
    std::vector<std::unique_ptr<RecordingSocket>> stuck;
    for (int i = 0; i < 20; ++i) {
        BeginConnect(i % 2 == 0 ? "a.example" : "b.example", listener.Port());
        stuck.push_back(std::move(socket));
        if (i % 5 == 0) stuck.back()->Close();
    }
    ASSERT_TRUE(WaitUntil([&] { return Asked() == 2; }));
    Connect();  // others go on
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(Asked(), 2U);
    Answer(std::nullopt);
    const auto told = [](const auto& one) { return one->connects == std::vector{kHostNotFound}; };
    EXPECT_TRUE(WaitUntil([&] { return std::count_if(stuck.begin(), stuck.end(), told) == 16; }));
    EXPECT_TRUE(ComesToRest() && stuck.front()->connects.empty()) << "a closed socket was told";
}

TEST_F(HostNameTest, LookUpThatNobodyWantsAnyMoreIsHarmless) {
    BeginConnect("left.example", listener.Port());
    ASSERT_TRUE(WaitUntil([&] { return Asked() == 1; }));
    socket.reset();
    // They take the numbers that the request has given back.
    std::vector<Descriptor> bystanders;
    for (int i = 0; i < 4; ++i) bystanders.emplace_back(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    Answer(0x7F000001);
    EXPECT_TRUE(WaitUntil([&] { return test::Threads() <= threadsBefore; }));
    for (const Descriptor& bystander : bystanders) {
        eventfd_t value = 0;
        EXPECT_EQ(eventfd_read(bystander.Get(), &value), -1) << "written to";
    }
}

TEST(HostNameDeathTest, StuckLookUpDoesNotDelayTheEndOfTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto endWhileStuck = [] {
        ReplaceHostLookup([](const std::string&) -> std::optional<Ipv4Address> {
            for (;;) pause();
        });
        RecordingSocket socket;
        socket.Create();
        socket.Connect("stuck.example", 80);
        std::exit(0);
    };
    EXPECT_EXIT(endWhileStuck(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace marvolen
