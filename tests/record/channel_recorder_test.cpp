#include "record/channel_recorder.h"

#include "net/frame_pool.h"
#include "net/net_event_owner.h"
#include "platform/messages.h"
#include "platform/text_field.h"
#include "platform/window.h"
#include "record/record_file.h"
#include "record/record_verifier.h"
#include "tests/support/loopback.h"
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
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace marvolen {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kSlotBytes = 204800;

// Runs the event loop without a pause, as the program does, until the condition holds; false when
// it doesn't for milliseconds.
template <typename Condition>
bool RunUntil(Condition condition, int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    QTimer wake;
    wake.start(5);
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

class EventWindow : public CWnd, public NetEventOwner {
public:
    std::vector<WPARAM> codes;

    void PostNetEvent(int code, ChannelInfo* info) override {
        PostMessage(WM_NETEVENT, static_cast<WPARAM>(code), reinterpret_cast<LPARAM>(info));
    }

protected:
    void OnMessage(std::uint32_t message, WPARAM wParam, LPARAM) override {
        if (message == WM_NETEVENT) codes.push_back(wParam);
    }
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

std::uint64_t HashOf(const VideoFrame& frame) {
    return HashBytes(frame.Picture().data(), frame.Picture().size());
}

// The records of a file in order.
struct StoredRecord {
    std::uint64_t hash;
    SYSTEMTIME stamp;
};

std::vector<StoredRecord> ReadRecords(const std::string& path) {
    std::vector<StoredRecord> records;
    FramePool pool;
    RecordFile file;
    if (!pool.Init(kSlotBytes, 1) || !file.OpenForRead(path)) return records;
    do {
        const FramePtr frame = pool.Acquire();
        if (!file.ReadRecord(*frame)) break;
        records.push_back({HashOf(*frame), *frame->Time()});
    } while (file.StepForward());
    file.CloseReader();
    return records;
}

bool IsSound(const std::string& path) {
    RecordScan scan;
    return scan.Open(path) && scan.IsRing() &&
           VerifyRecordFile(scan, RecordPictures::kNoted).Sound();
}

class Recorder : public ::testing::Test {
protected:
    Recorder() { EXPECT_TRUE(pool.Init(1000, 2)); }

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
    EventWindow window;
    FramePool pool;
    PassingReceiver pane;
    ChannelRecorder recorder;
};

TEST_F(Recorder, HoldsItsFileCountsEveryFrameAndWritesStampedOnesWhileRecording) {
    for (std::size_t run = 1; run <= 2; ++run) {
        recorder.SetRecording(true);  // off after every open
        ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
        EXPECT_EQ(fs::file_size(kPath), run == 1 ? 19264U : 19464U);
        EXPECT_EQ(Records(), 0U) << "it is held";
        Deliver(true);
        Deliver(false);
        EXPECT_EQ(recorder.TakeFrameCount(), 2U);
        EXPECT_EQ(recorder.TakeFrameCount(), 0U);
        recorder.SetRecording(true);
        Deliver(false);
        Deliver(true);
        Deliver(true);
        recorder.SetRecording(false);
        Deliver(true);
        EXPECT_EQ(recorder.TakeFrameCount(), 4U);
        recorder.Close(CloseFlag::Ended);
        EXPECT_EQ(Records(), 2 * run);
    }
    for (int k = 0; k < 20; ++k) Deliver(true);  // slots all went back to the pool
    channel.maxSizeMB = -1;                      // taken as unsigned
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.Close(CloseFlag::Ordered);
    RecordScan scan;
    ASSERT_TRUE(scan.Open(kPath));
    EXPECT_EQ(scan.Header().maxSize, 0xFFFFFFFFULL * 1048576);
}

TEST_F(Recorder, AFailedOpenSaysWhyHoldsNothingAndTouchesNoRecording) {
    std::vector<RecordTrouble> heard;
    recorder.SetTroubleHandler([&heard](RecordTrouble trouble) { heard.push_back(trouble); });
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.SetRecording(true);
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    EXPECT_TRUE(heard.empty());
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
    for (const auto& failure : kFailures) {
        SetFieldText(channel.recordPath, failure.path);
        channel.maxSizeMB = failure.maxSizeMB;
        EXPECT_FALSE(recorder.Open(&channel, &pane, &window)) << failure.path;
        EXPECT_EQ(recorder.Trouble(), failure.trouble) << failure.path;
        EXPECT_FALSE(recorder.IsOpen() || pane.IsWired() || recorder.Connect());
        EXPECT_FALSE(recorder.IsConnected() || recorder.HasSettled());
        EXPECT_EQ(recorder.TakeFrameCount(), 0U);
        recorder.Close(CloseFlag::Ended);
        EXPECT_EQ(recorder.Trouble(), failure.trouble) << "as long as nothing works";
    }
    EXPECT_EQ(test::ReadWholeFile(kPath), before);
    holder.Close();
    channel = MakeChannel(0);
    EXPECT_TRUE(recorder.Open(&channel, &pane, &window));
    EXPECT_EQ(heard, (std::vector{RecordTrouble::InUse, RecordTrouble::BadMaximum,
                                  RecordTrouble::CannotOpen, RecordTrouble::None}));
}

TEST_F(Recorder, SaysWhenADiskIsFullAndWhenThereIsRoomAgain) {
    std::vector<RecordTrouble> heard;
    recorder.SetTroubleHandler([&heard](RecordTrouble trouble) { heard.push_back(trouble); });
    rlimit unlimited{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    const auto limit = [&](rlim_t bytes) {
        const rlimit limited{bytes, unlimited.rlim_max};
        return setrlimit(RLIMIT_FSIZE, &limited) == 0;
    };
    ASSERT_TRUE(limit(10000));
    EXPECT_FALSE(recorder.Open(&channel, &pane, &window)) << "no room for the first block";
    ASSERT_TRUE(limit(19264 + 150));
    EXPECT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.SetRecording(true);
    for (int k = 0; k < 3; ++k) Deliver(true);
    recorder.SetRecording(false);
    ASSERT_TRUE(limit(unlimited.rlim_cur));
    Deliver(true);
    EXPECT_EQ(recorder.Trouble(), RecordTrouble::NoSpace) << "nothing has been written since";
    recorder.SetRecording(true);
    for (int k = 0; k < 2; ++k) Deliver(true);
    EXPECT_EQ(heard, (std::vector{RecordTrouble::NoSpace, RecordTrouble::None,
                                  RecordTrouble::NoSpace, RecordTrouble::None}));
    recorder.Close(CloseFlag::Ordered);
    EXPECT_EQ(Records(), 3U);
    Deliver(true);  // recording is still switched on
    std::signal(SIGXFSZ, signalBefore);
}

TEST_F(Recorder, LinksTheChainAndUnlinksAllOfIt) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    EXPECT_TRUE(pane.IsWired());
    recorder.Connect();
    EXPECT_TRUE(pane.IsActive());
    recorder.Close(CloseFlag::Ordered);
    EXPECT_FALSE(pane.IsWired());
    EXPECT_FALSE(pane.IsActive());
    EXPECT_EQ(recorder.TakeNext(), nullptr);
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.codes.empty());
}

// All sixteen channels at once, from the socket to the disk. Pictures are as large as a camera's
// at 704 x 480. For a minute of them:
//   MARVOLEN_RECORD_SECONDS=60 recorder_test --gtest_filter='Recording.*'
class Recording : public ::testing::Test {
protected:
    static constexpr std::size_t kPictureBytes = 50000;

    Recording() : server(Options(), std::make_shared<PatternPictures>(kPictureBytes)) {
        EXPECT_TRUE(server.Start()) << server.Error();
        const char* seconds = std::getenv("MARVOLEN_RECORD_SECONDS");
        pictures = seconds ? 30 * std::strtoul(seconds, nullptr, 10) : 20;
        for (int k = 0; k < kChannelCount; ++k) {
            ChannelInfo& channel = channels[static_cast<std::size_t>(k)];
            channel = MakeChannel(k);
            SetFieldText(channel.port, std::to_string(server.Port(k)));
            channel.maxSizeMB = static_cast<std::int32_t>(pictures * 2 * kPictureBytes >> 20) + 8;
        }
    }

    static CameraServerOptions Options() {
        CameraServerOptions options;
        if (std::getenv("MARVOLEN_RECORD_SECONDS") == nullptr) {
            options.period = std::chrono::milliseconds(5);
        }
        return options;
    }

    // Every picture the server says it sent is in the file: in order, byte for byte, stamped.
    void ExpectRecorded(int k) {
        const std::string path =
            "drive_c/chl" + std::string(k < 9 ? "0" : "") + std::to_string(k + 1) + ".dbt";
        EXPECT_TRUE(IsSound(path)) << path;
        const std::vector<SentPicture> sent = server.SentPictures(k);
        const std::vector<StoredRecord> records = ReadRecords(path);
        ASSERT_EQ(records.size(), sent.size()) << path;
        for (std::size_t n = 0; n < sent.size(); ++n) {
            const PictureStamp& stamp = sent[n].stamp;
            const SYSTEMTIME time{stamp.year,
                                  stamp.month,
                                  0,
                                  stamp.day,
                                  stamp.hour,
                                  stamp.minute,
                                  stamp.second,
                                  static_cast<std::uint16_t>(stamp.hundredths * 10)};
            ASSERT_EQ(records[n].hash, sent[n].picture->hash) << path << " record " << n;
            ASSERT_EQ(records[n].stamp, time) << path << " record " << n;
        }
    }

    const test::TemporaryFolder folder;
    CameraServer server;
    std::array<ChannelInfo, kChannelCount> channels{};
    std::array<PassingReceiver, kChannelCount> panes;
    EventWindow window;
    std::array<ChannelRecorder, kChannelCount> recorders;
    std::uint64_t pictures = 0;
};

TEST_F(Recording, OfSixteenChannelsLosesNothing) {
    for (std::size_t k = 0; k < recorders.size(); ++k) {
        ASSERT_TRUE(recorders[k].Open(&channels[k], &panes[k], &window));
        ASSERT_TRUE(recorders[k].Connect());
        recorders[k].SetRecording(true);
    }
    const int patience = test::kPatience + static_cast<int>(pictures) * 100;  // ms
    for (int k = 0; k < kChannelCount; ++k) {
        ASSERT_TRUE(RunUntil([&] { return server.Stats(k).sent >= pictures; }, patience));
    }
    Fault stall = MakeFault(FaultKind::StallAfter);
    stall.count = 0;
    for (int k = 0; k < kChannelCount; ++k) server.SetFault(k, stall);
    for (int k = 0; k < kChannelCount; ++k) {
        const PassingReceiver& pane = panes[static_cast<std::size_t>(k)];
        ASSERT_TRUE(RunUntil([&] { return pane.frames == server.Stats(k).sent; }, patience))
            << "channel " << k;
    }
    for (ChannelRecorder& recorder : recorders) recorder.Close(CloseFlag::Ordered);
    for (int k = 0; k < kChannelCount; ++k) ASSERT_NO_FATAL_FAILURE(ExpectRecorded(k));
}

}  // namespace
}  // namespace marvolen
