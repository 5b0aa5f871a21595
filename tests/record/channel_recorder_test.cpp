#include "record/channel_recorder.h"

#include "net/frame_pool.h"
#include "net/net_event_owner.h"
#include "platform/native_path.h"
#include "platform/text_field.h"
#include "record/record_file.h"
#include "record/record_verifier.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"
#include "tools/camera_server/pattern_pictures.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <utility>
#include <vector>

namespace marvolen {
namespace {

class EventCounter : public NetEventOwner {
public:
    void PostNetEvent(int, ChannelInfo*) override { ++events; }
    int events = 0;
};

// Stands where the live pane does.
class PassingReceiver : public FrameReceiver {
public:
    void Deliver(FramePtr frame) override {
        ++frames;
        Forward(std::move(frame));
    }
    bool IsWired() const { return next != nullptr; }
    bool IsActive() const { return active; }

    std::uint64_t frames = 0;
};

// Two megabytes: far more than these tests record.
ChannelInfo MakeChannel(int k) {
    ChannelInfo channel = FactoryChannelTable()[static_cast<std::size_t>(k)];
    SetFieldText(channel.host, "127.0.0.1");
    SetFieldText(channel.port, "1");
    channel.maxSizeMB = 2;
    return channel;
}

// The records of a file in order: hash of the picture, time.
using Stored = std::vector<std::pair<std::uint64_t, SYSTEMTIME>>;

Stored ReadRecords(const std::string& path) {
    Stored records;
    FramePool pool;
    RecordFile file;
    if (!pool.Init(kFrameCapacity, 1) || !file.OpenForRead(path)) return records;
    const FramePtr frame = pool.Acquire();
    do {
        if (!file.ReadRecord(*frame)) break;
        records.emplace_back(HashBytes(frame->Data(), frame->Length()), *frame->Time());
    } while (file.StepForward());
    return records;
}

class Recorder : public ::testing::Test {
protected:
    Recorder() {
        EXPECT_TRUE(pool.Init(1000, 2));
        recorder.SetTroubleHandler([this](RecordTrouble trouble) { heard.push_back(trouble); });
    }

    void Deliver(bool stamped) {
        FramePtr frame = pool.Acquire();
        frame->SetLength(100);
        if (stamped) frame->SetTime({2004, 2, 0, 29, 8, 15, 0, 0});
        pane.Deliver(std::move(frame));
    }

    std::size_t Records() { return ReadRecords(kPath).size(); }

    static constexpr const char* kPath = "drive_c/chl01.dbt";
    const test::TemporaryFolder folder;
    ChannelInfo channel = MakeChannel(0);
    EventCounter owner;
    FramePool pool;
    PassingReceiver pane;
    ChannelRecorder recorder;
    std::vector<RecordTrouble> heard;
};

TEST_F(Recorder, HoldsItsFileCountsEveryFrameAndWritesStampedOnesWhileRecording) {
    for (std::size_t run = 1; run <= 2; ++run) {
        recorder.SetRecording(true);  // off after every open
        ASSERT_TRUE(recorder.Open(&channel, &pane, &owner));
        EXPECT_EQ(Records(), 0U) << "it is held";
        for (const bool on : {false, true, false}) {
            recorder.SetRecording(on);
            for (const bool stamped : {true, false, true}) Deliver(stamped);
            EXPECT_EQ(recorder.TakeFrameCount(), 3U);
            EXPECT_EQ(recorder.TakeFrameCount(), 0U);
        }
        recorder.Close(CloseFlag::Ended);
        EXPECT_EQ(Records(), 2 * run);
    }
    channel.maxSizeMB = -1;  // taken as unsigned
    ASSERT_TRUE(recorder.Open(&channel, &pane, &owner));
    recorder.Close(CloseFlag::Ordered);
    RecordScan scan;
    ASSERT_TRUE(scan.Open(kPath));
    EXPECT_EQ(scan.Header().maxSize, 0xFFFFFFFFULL * 1048576);
}

TEST_F(Recorder, AFailedOpenSaysWhyHoldsNothingAndTouchesNoRecording) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &owner));
    recorder.SetRecording(true);
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    const std::string before = test::ReadWholeFile(kPath);
    FileHandle holder;
    ASSERT_TRUE(holder.OpenShared(kPath));
    const struct {
        const char* path;
        std::int32_t maxSizeMB;
        RecordTrouble trouble;
    } kFailures[] = {{"c:\\chl01.dbt", 2, RecordTrouble::InUse},
                     {"c:\\chl01.dbt", 0, RecordTrouble::BadMaximum},
                     {"", 2, RecordTrouble::CannotOpen},
                     {"missing/folder/x.dbt", 2, RecordTrouble::CannotOpen},
                     {".", 2, RecordTrouble::CannotOpen}};
    for (const auto& [path, maxSizeMB, trouble] : kFailures) {
        SetFieldText(channel.recordPath, path);
        channel.maxSizeMB = maxSizeMB;
        EXPECT_FALSE(recorder.Open(&channel, &pane, &owner)) << path;
        EXPECT_FALSE(recorder.IsOpen() || pane.IsWired() || recorder.Connect());
        EXPECT_FALSE(recorder.IsConnected() || recorder.HasSettled());
        EXPECT_EQ(recorder.TakeFrameCount(), 0U);
        recorder.Close(CloseFlag::Ended);
        EXPECT_EQ(recorder.Trouble(), trouble) << path;
    }
    EXPECT_EQ(heard, (std::vector{RecordTrouble::InUse, RecordTrouble::BadMaximum,
                                  RecordTrouble::CannotOpen}));
    EXPECT_EQ(test::ReadWholeFile(kPath), before);
    holder.Close();
    channel = MakeChannel(0);
    ASSERT_TRUE(recorder.Open(&channel, &pane, &owner));
    recorder.Connect();
    EXPECT_TRUE(recorder.IsOpen() && pane.IsWired() && pane.IsActive());
    recorder.Close(CloseFlag::Ordered);
    EXPECT_FALSE(pane.IsWired() || pane.IsActive() || recorder.TakeNext() != nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(owner.events, 0);
}

TEST_F(Recorder, IsInTroubleUntilAPictureIsWrittenOrNoneIsToBe) {
    rlimit unlimited{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    // Connects and records so many pictures on a disk with room for a file of so many bytes.
    const auto record = [&](rlim_t bytes, int pictures) {
        const rlimit limited{bytes, unlimited.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
        const bool opened = recorder.Open(&channel, &pane, &owner);
        recorder.SetRecording(true);
        for (int k = 0; k < pictures; ++k) Deliver(true);
        recorder.Close(CloseFlag::Ended);
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
        return opened;
    };
    constexpr RecordTrouble kFull = RecordTrouble::NoSpace;
    std::vector<RecordTrouble> expected;
    const struct {
        rlim_t room;
        int pictures;
        std::vector<RecordTrouble> told;
    } kConnections[] = {
        {10000, 0, {kFull}},                             // not even for the first block
        {19264 + 150, 3, {RecordTrouble::None, kFull}},  // for one of three
        {19264 + 150, 3, {}},                            // the camera came back, the room didn't
        {19264 + 60000, 600, {RecordTrouble::None, kFull}},  // for all but the next block
        {unlimited.rlim_cur, 1, {RecordTrouble::None}},
        {19264, 1, {kFull}},
    };
    for (const auto& [room, pictures, told] : kConnections) {
        EXPECT_EQ(record(room, pictures), room != 10000) << room;
        expected.insert(expected.end(), told.begin(), told.end());
        EXPECT_EQ(heard, expected) << room;
    }
    recorder.SetRecording(false);
    EXPECT_EQ(recorder.Trouble(), RecordTrouble::None);
    EXPECT_EQ(Records(), 601U);
    std::signal(SIGXFSZ, signalBefore);
}

// All sixteen channels at once, from the socket to the disk, with pictures as large as a camera's
// at 704 x 480. For a minute of them:
//   MARVOLEN_RECORD_SECONDS=60 recorder_test --gtest_filter='Recording.*'
TEST(Recording, OfSixteenChannelsLosesNothing) {
    const char* const seconds = std::getenv("MARVOLEN_RECORD_SECONDS");
    const std::uint64_t pictures = seconds ? 30 * std::strtoul(seconds, nullptr, 10) : 20;
    constexpr std::size_t kPictureBytes = 50000;
    CameraServerOptions options;
    if (!seconds) options.period = std::chrono::milliseconds(5);
    CameraServer server(options, std::make_shared<PatternPictures>(kPictureBytes));
    ASSERT_TRUE(server.Start()) << server.Error();
    const test::TemporaryFolder folder;
    struct Channel {
        ChannelInfo info;
        PassingReceiver pane;
        ChannelRecorder recorder;
    };
    EventCounter owner;
    std::array<Channel, kChannelCount> channels;
    for (int k = 0; k < kChannelCount; ++k) {
        auto& [info, pane, recorder] = channels[static_cast<std::size_t>(k)];
        info = MakeChannel(k);
        SetFieldText(info.port, std::to_string(server.Port(k)));
        info.maxSizeMB = static_cast<std::int32_t>(pictures * 2 * kPictureBytes >> 20) + 8;
        ASSERT_TRUE(recorder.Open(&info, &pane, &owner) && recorder.Connect());
        recorder.SetRecording(true);
    }
    const QDeadlineTimer deadline(20000 + static_cast<int>(pictures) * 100);
    QTimer wake;
    wake.start(1000);
    for (const Channel& channel : channels) {
        while (channel.pane.frames < pictures && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    for (int k = 0; k < kChannelCount; ++k) {
        auto& [info, pane, recorder] = channels[static_cast<std::size_t>(k)];
        recorder.Close(CloseFlag::Ordered);
        const std::string path = NativePath(FieldText(info.recordPath));
        const Stored recorded = ReadRecords(path);
        EXPECT_EQ(recorded.size(), pane.frames);
        EXPECT_GE(recorded.size(), pictures);
        const std::vector<SentPicture> sent = server.SentPictures(k);
        ASSERT_GE(sent.size(), recorded.size());
        for (std::size_t n = 0; n < recorded.size(); ++n) {
            const PictureStamp& at = sent[n].stamp;
            const SYSTEMTIME time{
                at.year, at.month,  0,         at.day,
                at.hour, at.minute, at.second, static_cast<std::uint16_t>(at.hundredths * 10)};
            ASSERT_TRUE(recorded[n] == std::pair(sent[n].picture->hash, time)) << path << ' ' << n;
        }
        RecordScan scan;
        ASSERT_TRUE(scan.Open(path) && VerifyRecordFile(scan, RecordPictures::kNoted).Sound());
    }
}

}  // namespace
}  // namespace marvolen
