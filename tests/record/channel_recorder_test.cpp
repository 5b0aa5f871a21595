#include "record/channel_recorder.h"

#include "net/frame_pool.h"
#include "net/net_event_owner.h"
#include "platform/messages.h"
#include "platform/text_field.h"
#include "platform/window.h"
#include "record/record_file.h"
#include "record/record_verifier.h"
#include "record/record_writer.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/camera_server.h"
#include "tools/camera_server/pattern_pictures.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <span>
#include <string>
#include <unistd.h>
#include <vector>

namespace marvolen {
namespace {

namespace fs = std::filesystem;

constexpr int kPatience = 20000;  // ms
constexpr std::uint32_t kSlotBytes = 204800;

// Runs the event loop without a pause, as the program does, until the condition holds; false when
// it doesn't for milliseconds.
template <typename Condition>
bool RunUntil(Condition condition, int milliseconds) {
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition()) loop.quit();
    });
    poll.start(5);
    QTimer::singleShot(milliseconds, &loop, [&loop] { loop.exit(1); });
    return loop.exec() == 0;
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
           VerifyRecordFile(scan, RecordPictures::kChecked).Sound();
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

TEST_F(Recorder, HoldsANewFileOpenFromTheStart) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    EXPECT_TRUE(recorder.IsOpen());
    EXPECT_EQ(fs::file_size(kPath), 19264U);
    RecordFile other;
    EXPECT_FALSE(other.OpenForRead(kPath));
    EXPECT_FALSE(other.CreateNew(kPath, 1 << 20));
    EXPECT_EQ(fs::file_size(kPath), 19264U);
    recorder.Close(CloseFlag::Ordered);
    EXPECT_TRUE(other.OpenAppend(kPath, 1 << 20));
}

TEST_F(Recorder, CountsEveryFrameAndWritesStampedOnesWhileRecording) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
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
    EXPECT_EQ(Records(), 2U);
    for (int k = 0; k < 20; ++k) Deliver(true);  // slots all went back to the pool
}

TEST_F(Recorder, StartsWithRecordingOffAfterEveryOpen) {
    recorder.SetRecording(true);
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    EXPECT_EQ(Records(), 0U);
    EXPECT_EQ(fs::file_size(kPath), 19264U);
}

TEST_F(Recorder, GoesOnBehindWhatWasRecorded) {
    for (int run = 1; run <= 3; ++run) {
        ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
        recorder.SetRecording(true);
        Deliver(true);
        recorder.Close(CloseFlag::Ordered);
        EXPECT_EQ(Records(), static_cast<std::size_t>(run));
    }
}

TEST_F(Recorder, ReplacesAForeignFile) {
    fs::create_directory("drive_c");
    test::WriteWholeFile(kPath, std::string(50000, 'x'));
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    EXPECT_EQ(fs::file_size(kPath), 19264U);
}

TEST_F(Recorder, ARefusedMaximumLeavesTheRecordingUntouched) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.SetRecording(true);
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    const std::string before = test::ReadWholeFile(kPath);
    channel.maxSizeMB = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(recorder.Open(&channel, &pane, &window));
        EXPECT_FALSE(recorder.IsOpen());
        EXPECT_FALSE(pane.IsWired());
    }
    EXPECT_EQ(test::ReadWholeFile(kPath), before);
}

// Whoever holds the file lets go in the moment in which it would be created anew.
class LateRecordWriter : public RecordWriter {
public:
    bool Create(const std::string& path) override {
        holder.Close();
        return RecordWriter::Create(path);
    }
    FileHandle holder;
};

TEST_F(Recorder, NeverReplacesAFileThatWasInUse) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.SetRecording(true);
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    {
        LateRecordWriter writer;
        ASSERT_TRUE(writer.holder.OpenShared(kPath));
        EXPECT_FALSE(writer.Open(channel));
        writer.holder.Close();
        EXPECT_TRUE(writer.Open(channel)) << "the next try";
    }
    EXPECT_EQ(Records(), 1U);
}

// No permission binds root, so as root these files are opened by nobody.
TEST_F(Recorder, LeavesAFileAloneThatMayNotBeWritten) {
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.SetRecording(true);
    Deliver(true);
    recorder.Close(CloseFlag::Ordered);
    const std::string before = test::ReadWholeFile(kPath);
    fs::permissions(kPath, fs::perms(0444));
    fs::permissions(".", fs::perms::all);
    const bool root = geteuid() == 0;
    if (root) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    const bool opened = recorder.Open(&channel, &pane, &window);
    if (root) {
        ASSERT_EQ(seteuid(0), 0);
    }
    EXPECT_FALSE(opened);
    EXPECT_FALSE(recorder.IsOpen());
    EXPECT_EQ(test::ReadWholeFile(kPath), before);
}

TEST_F(Recorder, TouchesNoOtherFile) {
    fs::create_directory("drive_c");
    test::WriteWholeFile("drive_c/chl02.dbt", "another channel's");
    for (int run = 0; run < 2; ++run) {
        ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
        recorder.SetRecording(true);
        Deliver(true);
        recorder.Close(CloseFlag::Ordered);
    }
    EXPECT_EQ(test::ReadWholeFile("drive_c/chl02.dbt"), "another channel's");
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        names.push_back(entry.path().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"./drive_c", "./drive_c/chl01.dbt",
                                               "./drive_c/chl02.dbt"}));
}

TEST_F(Recorder, TakesTheMaximumAsUnsigned) {
    channel.maxSizeMB = -1;
    ASSERT_TRUE(recorder.Open(&channel, &pane, &window));
    recorder.Close(CloseFlag::Ordered);
    RecordScan scan;
    ASSERT_TRUE(scan.Open(kPath));
    EXPECT_EQ(scan.Header().maxSize, 0xFFFFFFFFULL * 1048576);
}

TEST_F(Recorder, AFailedOpenLeavesItClosedWithNothingHeld) {
    const char* const paths[] = {"", "missing/folder/x.dbt", ".", "c:\\missing\\x.dbt"};
    for (const char* path : paths) {
        SetFieldText(channel.recordPath, path);
        EXPECT_FALSE(recorder.Open(&channel, &pane, &window)) << path;
        EXPECT_FALSE(recorder.IsOpen());
        EXPECT_FALSE(recorder.Connect());
        EXPECT_FALSE(recorder.IsConnected() || recorder.HasSettled());
        EXPECT_EQ(recorder.TakeFrameCount(), 0U);
        recorder.Close(CloseFlag::Ended);
    }
    SetFieldText(channel.recordPath, "x.dbt");
    EXPECT_TRUE(recorder.Open(&channel, &pane, &window));
    ChannelRecorder second;
    PassingReceiver otherPane;
    EXPECT_FALSE(second.Open(&channel, &otherPane, &window)) << "the file is held";
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
        pictures = 30 * (seconds ? std::strtoul(seconds, nullptr, 10) : 4UL);
        for (int k = 0; k < kChannelCount; ++k) {
            ChannelInfo& channel = channels[static_cast<std::size_t>(k)];
            channel = MakeChannel(k);
            SetFieldText(channel.port, std::to_string(server.Port(k)));
            channel.maxSizeMB = static_cast<std::int32_t>(pictures * 2 * kPictureBytes >> 20) + 8;
        }
    }

    static CameraServerOptions Options() {
        CameraServerOptions options;
        options.checkCredentials = true;
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
    const int patience = kPatience + static_cast<int>(pictures) * 100;
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
