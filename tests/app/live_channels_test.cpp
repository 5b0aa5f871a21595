// The channels without a window: sixteen cameras, timers that tick when the test says so, and a
// view that takes notes.

#include "app/live_channels.h"

#include "net/channel_link.h"
#include "net/frame_receiver.h"
#include "net/net_event_owner.h"
#include "platform/text_field.h"
#include "record/record_file.h"
#include "tests/app/cameras.h"
#include "tests/support/event_loop.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

using test::WaitUntil;

struct Pane final : FrameReceiver {
    void Deliver(FramePtr frame) override {
        ++frames;
        Forward(std::move(frame));
    }

    int opened = 0;
    int frames = 0;
    bool connected = false;
    bool recording = false;
    std::string trouble;
};

class LiveChannelsTest : public test::Cameras,
                         public LiveChannelsView,
                         public ChannelTimers,
                         public NetEventOwner {
protected:
    bool ReopenPane(int k, const ChannelInfo& info) override {
        ++panes[k].opened;
        return &info == &Info(k) && k != paneThatFails;
    }
    FrameReceiver& PaneReceiver(int k) override { return panes[k]; }
    void ShowConnected(int k, bool connected) override { panes[k].connected = connected; }
    void ShowRecording(int k, bool recording) override { panes[k].recording = recording; }
    void ShowTrouble(int k, const std::string& text) override { panes[k].trouble = text; }
    void AddLogEntry(const ChannelInfo& info, std::string_view message) override {
        log.push_back(std::to_string(ChannelNumber(&info)) + " " + std::string(message));
    }
    void SetChannelTimer(std::uint32_t id, std::uint32_t milliseconds) override {
        timers[id] = milliseconds;
    }
    void KillChannelTimer(std::uint32_t id) override { timers.erase(id); }
    void PostNetEvent(int code, ChannelInfo* info) override { posted.emplace_back(code, info); }

    long Count(const std::string& line) { return std::count(log.begin(), log.end(), line); }

    // Handles posted events until the condition holds.
    template <typename Condition>
    bool Run(Condition condition) {
        return WaitUntil([&] {
            for (const auto& [code, info] : std::exchange(posted, {})) {
                channels.OnNetEvent(code, *info);
            }
            return condition();
        });
    }
    bool RunUntilLive(int k) {
        const int before = panes[k].frames;
        return Run([&] { return panes[k].connected && panes[k].frames > before + 1; });
    }

    Pane panes[kChannelCount];
    std::map<std::uint32_t, std::uint32_t> timers;  // id to period
    std::vector<std::string> log;
    std::vector<std::pair<int, ChannelInfo*>> posted;
    int paneThatFails = -1;
    SYSTEMTIME now{2004, 2, 0, 29, 8, 15, 0, 0};
    LiveChannels channels{*this, *this, *this, [this] { return now; }};
};

TEST_F(LiveChannelsTest, ReopensFiveSecondsAfterACloseOrError) {
    server.SetFault(3, MakeFault(FaultKind::Refuse));
    SetFieldText(Info(5).host, "");
    Info(2).channelIndex = 9;  // spoilt: the record's position tells the channel
    channels.StartAllChannels();
    EXPECT_EQ(timers, (std::map<std::uint32_t, std::uint32_t>{{17, 30000}}));
    for (const int k : {0, 1, 2, 9, 15}) EXPECT_TRUE(RunUntilLive(k)) << k;
    EXPECT_EQ(Count("1 Network connect."), 1);
    ASSERT_TRUE(Run([&] { return Count("4 Network error.") == 1; }));
    EXPECT_EQ(timers[3], 5000U);
    EXPECT_EQ(panes[5].opened, 1) << "a channel without a host shows its name";
    EXPECT_FALSE(channels.Recorder(5).IsOpen());

    server.Drop(2);
    ASSERT_TRUE(Run([&] { return Count("3 Network close.") == 1; }));
    EXPECT_EQ(timers[2], 5000U);
    EXPECT_FALSE(panes[2].connected);
    EXPECT_FALSE(channels.Recorder(2).IsOpen());
    EXPECT_TRUE(panes[9].connected);
    channels.OnTimer(2);
    EXPECT_FALSE(timers.contains(2)) << "ticks once";
    EXPECT_TRUE(RunUntilLive(2));
    channels.StopAllChannels(CloseFlag::Ordered);
    channels.OnNetEvent(NETEVENT_CLOSE, Info(2));  // of a connection closed since
    EXPECT_EQ(Count("3 Network close."), 1) << "one close, one entry";
    EXPECT_TRUE(timers.empty());
}

TEST_F(LiveChannelsTest, TheWatchdogRestartsTheSilentAndCancelsTheirReconnects) {
    server.SetFault(2, MakeFault(FaultKind::Silent));
    server.SetFault(7, MakeFault(FaultKind::Close));
    SetFieldText(Info(5).port, "no port");
    SetFieldText(Info(6).host, "");
    channels.StartAllChannels();
    for (const int k : {0, 1, 3}) ASSERT_TRUE(RunUntilLive(k)) << k;
    ASSERT_TRUE(Run([&] { return Count("8 Network close.") == 1; }));
    for (int tick = 1; tick <= 2; ++tick) {
        ASSERT_TRUE(RunUntilLive(0));
        channels.OnTimer(kWatchdogTimer);
        for (const int silent : {3, 6, 8}) {
            EXPECT_EQ(Count(std::to_string(silent) + " Unknown Error."), tick) << silent;
        }
    }
    EXPECT_EQ(Count("7 Unknown Error."), 0) << "has no host";
    EXPECT_EQ(Count("1 Unknown Error."), 0) << "delivers pictures";
    EXPECT_FALSE(timers.contains(7));
    EXPECT_TRUE(timers.contains(17));
}

TEST_F(LiveChannelsTest, OneThatCannotOpenStopsThoseBeforeItAndTheWatchdog) {
    SetFieldText(Info(9).recordPath, "missing/folder/x.dbt");
    Info(11).maxSizeMB = 0;
    paneThatFails = 12;
    channels.StartAllChannels();
    for (int k = 13; k < kChannelCount; ++k) EXPECT_TRUE(RunUntilLive(k)) << k;
    for (int k = 0; k < 13; ++k) EXPECT_FALSE(channels.Recorder(k).IsOpen()) << k;
    EXPECT_TRUE(timers.empty());
    channels.StopAllChannels(CloseFlag::Ordered);
    for (int k = 0; k < kChannelCount; ++k) EXPECT_FALSE(channels.Recorder(k).IsOpen()) << k;
}

TEST_F(LiveChannelsTest, WhatIsWantedToRecordOutlivesEveryReopening) {
    for (const int k : {0, 5}) channels.SetRecording(k, true);
    SetFieldText(Info(5).host, "");
    channels.StartAllChannels();
    EXPECT_TRUE(panes[5].recording);
    for (int turn = 0; turn < 2; ++turn) {
        const auto size = [] { return std::filesystem::file_size("drive_c/chl01.dbt"); };
        const std::uintmax_t before = size();
        EXPECT_TRUE(Run([&] { return size() > before + 19264; })) << "turn " << turn;
        server.Drop(0);
        ASSERT_TRUE(Run([&] { return !channels.Recorder(0).IsOpen(); }));
        EXPECT_TRUE(channels.IsRecording(0) && panes[0].recording);
        channels.OnTimer(0);
    }
    channels.SetRecording(0, false);
    EXPECT_FALSE(panes[0].recording);
    channels.StopAllChannels(CloseFlag::Ordered);
    EXPECT_TRUE(RecordFile().OpenForRead("drive_c/chl01.dbt"));
    EXPECT_EQ(std::filesystem::file_size("drive_c/chl02.dbt"), 19264U) << "was never recorded";
}

// A spell lasts from the first failure until the file can be had, however often it is tried.
TEST_F(LiveChannelsTest, AChannelThatCannotRecordSaysWhatAndSinceWhen) {
    SetFieldText(Info(2).recordPath, "here.dbt");
    const auto expect = [&](RecordTrouble trouble, const char* since) {
        EXPECT_EQ(channels.OpenChannel(2), trouble == RecordTrouble::None);
        channels.CloseChannel(2, CloseFlag::Ordered);
        EXPECT_EQ(panes[2].trouble, TroubleText(trouble) + std::string(since));
        now.hour++;
    };
    ::testing::internal::CaptureStderr();
    RecordFile elsewhere;
    for (const char* since : {", since 2004/02/29 08:15:00", ", since 2004/02/29 11:15:00"}) {
        ASSERT_TRUE(elsewhere.OpenOrCreateNew("here.dbt", 1 << 20));
        expect(RecordTrouble::InUse, since);
        elsewhere.CloseWriter();
        Info(2).maxSizeMB = 0;
        expect(RecordTrouble::BadMaximum, since);
        Info(2).maxSizeMB = 1;
        expect(RecordTrouble::None, "");
    }
    const std::string line =
        "NET.3: " + std::string(TroubleText(RecordTrouble::InUse)) + ": here.dbt\n";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), line + line);
    Info(2).maxSizeMB = 0;
    expect(RecordTrouble::BadMaximum, ", since 2004/02/29 14:15:00");
    SetFieldText(Info(2).host, "");  // isn't to record any more
    expect(RecordTrouble::None, "");
}

}  // namespace
}  // namespace marvolen
