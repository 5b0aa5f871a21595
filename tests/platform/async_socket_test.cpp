#include "platform/async_socket.h"

#include "platform/host_resolver.h"
#include "tests/support/event_loop.h"
#include "tests/support/loopback.h"
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
using test::LoopbackListener;
using test::LoopbackPeer;
using test::WaitUntil;

// Writes down what it is told. Reads like the program does: one receive a notification.
class RecordingSocket : public CAsyncSocket {
public:
    using Handler = std::function<void()>;

    std::vector<int> connects;  // the errors
    int receives = 0;
    int closes = 0;
    std::string received;
    std::ptrdiff_t lastReceive = 1;
    std::size_t receiveSize = 2003;
    Handler duringConnect, duringReceive, duringClose;

    std::ptrdiff_t SendText(std::string_view text) {
        return Send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    std::ptrdiff_t ReceiveOnce() {
        std::vector<std::uint8_t> buffer(receiveSize);
        lastReceive = Receive(buffer);
        if (lastReceive > 0) received.append(buffer.begin(), buffer.begin() + lastReceive);
        return lastReceive;
    }

protected:
    void OnConnect(int error) override {
        connects.push_back(error);
        Run(duringConnect);
    }
    void OnReceive() override {
        ++receives;
        if (duringReceive) {
            Run(duringReceive);
        } else {
            ReceiveOnce();
        }
    }
    void OnClose() override {
        ++closes;
        Run(duringClose);
    }

private:
    // A copy runs, as the handler may destroy the socket.
    static void Run(const Handler& handler) {
        if (const Handler copy = handler) copy();
    }
};

class AsyncSocketTest : public ::testing::Test {
protected:
    void BeginConnect(std::string_view host, std::uint16_t port) {
        ASSERT_TRUE(socket->Create());
        ASSERT_TRUE(socket->Connect(host, port));
        ASSERT_TRUE(socket->connects.empty()) << "reported from within Connect";
    }
    void BeginConnect() { BeginConnect("127.0.0.1", listener.Port()); }
    void Connect() {
        BeginConnect();
        peer = listener.Accept();
        ASSERT_TRUE(WaitUntil([&] { return !socket->connects.empty(); }));
        ASSERT_EQ(socket->connects, std::vector{0});
    }
    void ExpectConnectError(int error) {
        ASSERT_TRUE(WaitUntil([&] { return !socket->connects.empty(); }));
        EXPECT_TRUE(ComesToRest());
        EXPECT_EQ(socket->connects, std::vector{error});
    }

    LoopbackListener listener;
    LoopbackPeer peer;
    std::unique_ptr<RecordingSocket> socket = std::make_unique<RecordingSocket>();
};

TEST_F(AsyncSocketTest, CarriesBytesBothWays) {
    Connect();
    EXPECT_EQ(socket->SendText("request\n"), 8);
    EXPECT_EQ(peer.ReceiveUntil("\n"), "request\n");
    peer.Send("answer");
    ASSERT_TRUE(WaitUntil([&] { return socket->received == "answer"; }));
    EXPECT_EQ(socket->receives, 1);
}

TEST_F(AsyncSocketTest, NotifiesAgainWhileBytesAreLeft) {
    Connect();
    const std::string sent(3 * 2003 + 1, 'x');
    peer.Send(sent);
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return socket->closes > 0; }));
    EXPECT_EQ(socket->received, sent) << "everything before the end comes before OnClose";
    EXPECT_GE(socket->receives, 4);
}

TEST_F(AsyncSocketTest, UrgentBytesArriveInTheirPlaceAndLeaveTheEventLoopAtRest) {
    Connect();
    peer.SendUrgent('!');
    ASSERT_TRUE(WaitUntil([&] { return socket->received == "!"; }));
    EXPECT_TRUE(ComesToRest());
    peer.Send("ab");
    peer.SendUrgent('?');
    peer.Send("cd");
    ASSERT_TRUE(WaitUntil([&] { return socket->received == "!ab?cd"; }));
    peer.SendUrgent('.');
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return socket->closes > 0; }));
    EXPECT_EQ(socket->received, "!ab?cd.");
    EXPECT_TRUE(ComesToRest());
}

TEST_F(AsyncSocketTest, ReportsTheEndOnceAndRests) {
    Connect();
    EXPECT_TRUE(ComesToRest()) << "a silent peer costs nothing";
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return socket->closes > 0; }));
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(socket->closes, 1);
    EXPECT_EQ(socket->receives, 0);
}

TEST_F(AsyncSocketTest, ReportsAResetThroughReceive) {
    Connect();
    peer.Reset();
    ASSERT_TRUE(WaitUntil([&] { return socket->receives > 0; }));
    EXPECT_EQ(socket->lastReceive, -1);
    EXPECT_EQ(socket->GetLastError(), ECONNRESET);
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(socket->receives, 1);
    EXPECT_EQ(socket->closes, 0);
}

TEST_F(AsyncSocketTest, RestsAfterAResetThatNobodyReceives) {
    Connect();
    socket->duringReceive = [] {};
    peer.Reset();
    ASSERT_TRUE(WaitUntil([&] { return socket->receives > 0; }));
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(socket->receives, 1);
}

TEST_F(AsyncSocketTest, ReceivingTheEndOneselfEndsReports) {
    Connect();
    peer.Close();
    // The end arrives outside the event loop.
    while (socket->ReceiveOnce() < 0) ASSERT_EQ(socket->GetLastError(), kWouldBlock);
    EXPECT_EQ(socket->lastReceive, 0);
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(socket->closes, 0);
}

TEST_F(AsyncSocketTest, ReceiveThatWouldBlockHarmsNothing) {
    Connect();
    EXPECT_EQ(socket->ReceiveOnce(), -1);
    EXPECT_EQ(socket->GetLastError(), kWouldBlock);
    peer.Send("still there");
    EXPECT_TRUE(WaitUntil([&] { return socket->received == "still there"; }));
}

TEST_F(AsyncSocketTest, SendingToAClosedPeerFailsWithoutASignal) {
    Connect();
    peer.Reset();
    ASSERT_TRUE(WaitUntil([&] { return socket->receives > 0; }));
    EXPECT_EQ(socket->SendText("anybody?"), -1);
    EXPECT_EQ(socket->GetLastError(), EPIPE);
}

TEST_F(AsyncSocketTest, RefusedAndUnreachableAreReportedOnce) {
    BeginConnect("127.0.0.1", test::RefusingPort());
    ExpectConnectError(ECONNREFUSED);

    // A multicast address can't be connected to: that is known at once, but told the same way.
    socket = std::make_unique<RecordingSocket>();
    BeginConnect("224.0.0.1", 80);
    ExpectConnectError(ENETUNREACH);
}

TEST_F(AsyncSocketTest, MisuseFailsAtOnce) {
    EXPECT_FALSE(socket->Connect("127.0.0.1", 80));
    EXPECT_EQ(socket->GetLastError(), ENOTSOCK);
    EXPECT_EQ(socket->SendText("x"), -1);
    EXPECT_EQ(socket->ReceiveOnce(), -1);
    BeginConnect();
    EXPECT_FALSE(socket->Create());
    EXPECT_FALSE(socket->Connect("127.0.0.1", listener.Port()));
    EXPECT_EQ(socket->GetLastError(), EALREADY) << "a second attempt";
}

TEST_F(AsyncSocketTest, ClosedWhileConnectingReportsNothing) {
    // A full backlog: the listener's system drops what comes, as an absent host would.
    LoopbackListener crowded(0);
    std::vector<std::unique_ptr<RecordingSocket>> crowd;
    for (int i = 0; i < 8; ++i) {
        crowd.push_back(std::make_unique<RecordingSocket>());
        ASSERT_TRUE(crowd.back()->Create());
        crowd.back()->Connect("127.0.0.1", crowded.Port());
    }
    EXPECT_TRUE(ComesToRest());
    EXPECT_TRUE(crowd.back()->connects.empty()) << "no answer yet";
    crowd.back()->Close();
    crowded.Close();
    BeginConnect();
    peer = listener.Accept();
    socket->Close();
    EXPECT_TRUE(peer.IsEnded());
    EXPECT_TRUE(ComesToRest());
    EXPECT_TRUE(crowd.back()->connects.empty());
    EXPECT_TRUE(socket->connects.empty());
}

TEST_F(AsyncSocketTest, MayCloseOrEndInsideItsOwnHandlers) {
    const std::function<void()> endings[] = {[&] { socket->Close(); }, [&] { socket.reset(); }};
    for (const auto& end : endings) {
        socket = std::make_unique<RecordingSocket>();
        socket->duringConnect = end;
        BeginConnect();
        peer = listener.Accept();
        ASSERT_TRUE(WaitUntil([&] { return socket == nullptr || !socket->IsOpen(); }));
        EXPECT_TRUE(peer.IsEnded());

        socket = std::make_unique<RecordingSocket>();
        Connect();
        socket->duringReceive = end;
        peer.Send("last words");
        ASSERT_TRUE(WaitUntil([&] { return socket == nullptr || !socket->IsOpen(); }));

        socket = std::make_unique<RecordingSocket>();
        Connect();
        socket->duringClose = end;
        peer.Close();
        ASSERT_TRUE(WaitUntil([&] { return socket == nullptr || !socket->IsOpen(); }));
        EXPECT_TRUE(ComesToRest());
    }
}

TEST_F(AsyncSocketTest, MayConnectAnewInsideItsOwnHandler) {
    Connect();
    socket->duringClose = [&] {
        socket->Close();
        socket->connects.clear();
        BeginConnect();
    };
    peer.Close();
    ASSERT_TRUE(WaitUntil([&] { return socket->closes == 1 && !socket->connects.empty(); }));
    peer = listener.Accept();
    peer.Send("second life");
    EXPECT_TRUE(WaitUntil([&] { return socket->received == "second life"; }));
}

TEST_F(AsyncSocketTest, LeavesNoDescriptorBehind) {
    Connect();
    socket.reset();
    peer.Close();
    ASSERT_TRUE(ComesToRest());
    const auto before = test::OpenDescriptors();
    for (int i = 0; i < 50; ++i) {
        socket = std::make_unique<RecordingSocket>();
        if (i % 2 == 0) {
            Connect();
        } else {
            BeginConnect("localhost", listener.Port());
        }
        socket.reset();
        if (i % 2 == 0) peer.Close();
    }
    // Look-ups that nobody wants any more may hold one for a moment.
    EXPECT_TRUE(WaitUntil([&] { return test::OpenDescriptors() == before; }));
}

// A name server that answers when it is told to.
class FakeNameServer {
public:
    FakeNameServer() {
        before = ReplaceHostLookup(
            [server = state](const std::string& name) { return server->LookUp(name); });
    }
    ~FakeNameServer() {
        Answer(std::nullopt);
        ReplaceHostLookup(before);
    }

    // Lets every look-up end, those under way and those to come.
    void Answer(std::optional<Ipv4Address> address) {
        const std::scoped_lock guard(state->lock);
        state->address = address;
        state->answers = true;
        state->changed.notify_all();
    }
    std::vector<std::string> Asked() {
        const std::scoped_lock guard(state->lock);
        return state->asked;
    }

private:
    struct State {
        std::mutex lock;
        std::condition_variable changed;
        std::vector<std::string> asked;
        bool answers = false;
        std::optional<Ipv4Address> address;

        std::optional<Ipv4Address> LookUp(const std::string& name) {
            std::unique_lock guard(lock);
            asked.push_back(name);
            changed.wait(guard, [this] { return answers; });
            return address;
        }
    };
    const std::shared_ptr<State> state = std::make_shared<State>();
    HostLookup before;
};

constexpr Ipv4Address kLoopback = 0x7F000001;

TEST(ParseAddressTest, TakesDottedAddressesOnly) {
    EXPECT_EQ(ParseAddress("127.0.0.1"), kLoopback);
    EXPECT_EQ(ParseAddress("255.254.253.252"), 0xFFFEFDFC);
    for (const std::string_view text :
         {"", "localhost", "1.2.3", "1.2.3.4.5", "256.1.1.1", "1.2.3.4 ", "1.2.3.x", "::1"}) {
        EXPECT_FALSE(ParseAddress(text)) << text;
    }
    EXPECT_FALSE(ParseAddress(std::string_view("1.2.3.4\0.5", 10)));
}

class HostNameTest : public AsyncSocketTest {
protected:
    ~HostNameTest() override {
        names.Answer(std::nullopt);
        // A look-up's thread lives a little longer than its answer.
        EXPECT_TRUE(WaitUntil([&] { return test::Threads() <= threadsBefore; }));
    }
    const std::size_t threadsBefore = test::Threads();
    FakeNameServer names;
};

TEST_F(HostNameTest, ConnectsToTheAddressOfAName) {
    BeginConnect("camera.example", listener.Port());
    names.Answer(kLoopback);
    ASSERT_TRUE(WaitUntil([&] { return !socket->connects.empty(); }));
    EXPECT_EQ(socket->connects, std::vector{0});
    EXPECT_EQ(names.Asked(), std::vector<std::string>{"camera.example"});
}

TEST_F(HostNameTest, NameWithoutAddressIsReportedOnce) {
    names.Answer(std::nullopt);
    BeginConnect("nowhere.example", listener.Port());
    ExpectConnectError(kHostNotFound);
}

TEST_F(HostNameTest, RefusedAtTheAddressOfAName) {
    names.Answer(kLoopback);
    BeginConnect("refusing.example", test::RefusingPort());
    ExpectConnectError(ECONNREFUSED);
}

TEST_F(HostNameTest, StuckLookUpsLeaveTheEventLoopFreeAndShareAThread) {
    std::vector<std::unique_ptr<RecordingSocket>> stuck;
    for (int i = 0; i < 20; ++i) {
        stuck.push_back(std::make_unique<RecordingSocket>());
        ASSERT_TRUE(stuck.back()->Create());
        ASSERT_TRUE(stuck.back()->Connect(i % 2 == 0 ? "a.example" : "b.example", listener.Port()));
        if (i % 5 == 0) stuck.back()->Close();
    }
    ASSERT_TRUE(WaitUntil([&] { return names.Asked().size() == 2; }));
    Connect();  // others go on
    EXPECT_TRUE(ComesToRest());
    EXPECT_EQ(names.Asked().size(), 2U);

    names.Answer(std::nullopt);
    const auto told = [](const auto& one) { return one->connects == std::vector{kHostNotFound}; };
    EXPECT_TRUE(WaitUntil([&] { return std::count_if(stuck.begin(), stuck.end(), told) == 16; }));
    EXPECT_TRUE(ComesToRest());
    EXPECT_TRUE(stuck.front()->connects.empty()) << "a closed socket was told";
}

TEST_F(HostNameTest, LookUpThatNobodyWantsAnyMoreIsHarmless) {
    BeginConnect("left.example", listener.Port());
    ASSERT_TRUE(WaitUntil([&] { return names.Asked().size() == 1; }));
    socket.reset();
    // They take the numbers that the request has given back.
    std::vector<Descriptor> bystanders;
    for (int i = 0; i < 4; ++i) bystanders.emplace_back(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    names.Answer(kLoopback);
    EXPECT_TRUE(WaitUntil([&] { return test::Threads() <= threadsBefore; }));
    for (const Descriptor& bystander : bystanders) {
        eventfd_t value = 0;
        EXPECT_EQ(eventfd_read(bystander.Get(), &value), -1) << "written to";
    }
    EXPECT_TRUE(ComesToRest());
}

TEST_F(HostNameTest, SocketMayEndWhenToldThatThereIsNoAddress) {
    socket->duringConnect = [&] { socket.reset(); };
    BeginConnect("gone.example", listener.Port());
    names.Answer(std::nullopt);
    EXPECT_TRUE(WaitUntil([&] { return socket == nullptr; }));
    EXPECT_TRUE(ComesToRest());
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

TEST_F(AsyncSocketTest, SystemKnowsLocalhost) {
    BeginConnect("localhost", listener.Port());
    EXPECT_TRUE(WaitUntil([&] { return socket->connects == std::vector{0}; }));
}

}  // namespace
}  // namespace marvolen
