#include "net/frame_receiver.h"

#include "net/channel_link.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

class RecordingLink : public ChannelLink {
public:
    std::vector<int> events;
    void OnEvent(int code) override { events.push_back(code); }
};

using Calls = std::vector<std::string>;

class Node : public FrameReceiver {
public:
    Node(std::string nodeName, Calls& log) : name(std::move(nodeName)), calls(log) {}

    bool refuses = false;

    // Who started it, if it is active.
    const ChannelLink* Starter() const { return active ? link : nullptr; }
    void Tell(int code) { PostEvent(code); }

    bool Start(ChannelLink* startingLink) override {
        if (!FrameReceiver::Start(startingLink)) return false;
        calls.push_back("start " + name);
        if (!refuses) return true;
        active = false;
        link = nullptr;
        return false;
    }
    void Stop() override {
        calls.push_back("stop " + name);
        FrameReceiver::Stop();
    }

private:
    const std::string name;
    Calls& calls;
};

using Starters = std::vector<const ChannelLink*>;  // of head, middle and tail

class FrameReceiverTest : public ::testing::Test {
protected:
    FrameReceiverTest() {
        head.SetNext(&middle);
        middle.SetNext(&tail);
    }
    Starters Chain() const { return {head.Starter(), middle.Starter(), tail.Starter()}; }

    Calls calls;
    RecordingLink link;
    Node head{"head", calls}, middle{"middle", calls}, tail{"tail", calls};
};

TEST_F(FrameReceiverTest, StartsFromTheTailAndStopsFromTheHead) {
    ASSERT_TRUE(head.Start(&link));
    EXPECT_EQ(Chain(), (Starters{&link, &link, &link}));
    middle.Tell(NETEVENT_ERROR);
    head.Stop();
    EXPECT_EQ(Chain(), Starters(3));
    middle.Tell(NETEVENT_CLOSE);  // a stopped receiver posts nothing
    EXPECT_EQ(link.events, std::vector{NETEVENT_ERROR});
    EXPECT_EQ(calls, (Calls{"start tail", "start middle", "start head", "stop head", "stop middle",
                            "stop tail"}));
}

TEST_F(FrameReceiverTest, NothingStartsBeforeAReceiverThatRefuses) {
    tail.refuses = true;
    EXPECT_FALSE(head.Start(&link));
    EXPECT_EQ(Chain(), Starters(3));
    tail.refuses = false;
    middle.refuses = true;
    EXPECT_FALSE(head.Start(&link));
    EXPECT_EQ(Chain(), (Starters{nullptr, nullptr, &link})) << "what stands behind stays started";
}

TEST_F(FrameReceiverTest, UnwiresOneOrAll) {
    EXPECT_EQ(middle.TakeNext(), &tail);
    EXPECT_EQ(middle.TakeNext(), nullptr);
    middle.SetNext(&tail);
    head.ClearChain();
    for (Node* node : {&head, &middle, &tail}) EXPECT_EQ(node->TakeNext(), nullptr);
}

}  // namespace
}  // namespace marvolen
