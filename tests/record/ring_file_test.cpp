// The four file classes: clipping, mark, wrap-around, header.

#include "record/ring_file.h"

#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using test::ReadWholeFile;
using test::WriteWholeFile;

constexpr const char* kPath = "ring";

// Notes what the hooks are called with, and moves the mark where a test wants it.
template <typename File>
class Hooked : public File {
public:
    std::vector<std::uint64_t> limits;  // positions after the clipped write
    std::vector<std::uint64_t> marks;   // marks at each call
    std::vector<std::uint64_t> moves;   // where each call puts the mark
    std::vector<std::uint64_t> sizes;   // file sizes at each call

protected:
    void OnLimit() override {
        limits.push_back(this->Tell());
        File::OnLimit();
    }
};

class HookedMark : public Hooked<MarkedFile> {
protected:
    void OnMark() override {
        marks.push_back(GetMark());
        sizes.push_back(GetSize());
        if (marks.size() <= moves.size()) SetMark(moves[marks.size() - 1]);
    }
};

class HookedRing : public Hooked<RingFile> {
protected:
    void OnHeadReached() override {
        marks.push_back(GetHead());
        if (marks.size() <= moves.size()) SetHead(moves[marks.size() - 1]);
    }
};

template <typename File>
std::uint32_t Put(File& file, const std::string& bytes) {
    std::uint32_t put = 99;
    EXPECT_TRUE(file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &put));
    return put;
}

template <typename File>
std::string Get(File& file, std::uint32_t n) {
    std::string bytes(n, '?');
    std::uint32_t got = 99;
    EXPECT_TRUE(file.Read(bytes.data(), n, &got));
    bytes.resize(got);
    return bytes;
}

class FileClasses : public ::testing::Test {
protected:
    const test::TemporaryFolder folder;
};

using BasicFileTest = FileClasses;
using LimitedFileTest = FileClasses;
using MarkedFileTest = FileClasses;
using RingFileTest = FileClasses;

TEST_F(BasicFileTest, MovesBytesAndPositions) {
    BasicFile file;
    ASSERT_TRUE(file.Create(kPath));
    EXPECT_EQ(Put(file, "abcdef"), 6U);
    EXPECT_EQ(file.Tell(), 6U);
    EXPECT_EQ(Get(file, 4), "");
    ASSERT_TRUE(file.Seek(2));
    EXPECT_EQ(Get(file, 10), "cdef");
    EXPECT_TRUE(file.Seek(1) && file.Write("X", 1, nullptr) && file.Read(nullptr, 0, nullptr));
    EXPECT_EQ(file.GetSize(), 6U);
    file.Close();
    file.Close();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadWholeFile(kPath), "aXcdef");
    BasicFile again;
    EXPECT_TRUE(again.Open(kPath));
    EXPECT_EQ(again.GetSize(), 6U);
}

TEST_F(LimitedFileTest, ClipsAndThenCallsTheHook) {
    Hooked<LimitedFile> file;
    ASSERT_TRUE(file.Create(kPath) && file.SetMaxSize(10) && file.SetLimit(true));
    EXPECT_EQ(Put(file, "0123456789"), 10U);
    EXPECT_TRUE(file.limits.empty());
    EXPECT_EQ(Put(file, "x"), 0U);
    EXPECT_EQ(file.limits, std::vector<std::uint64_t>{10});
    ASSERT_TRUE(file.Seek(7));
    EXPECT_EQ(Put(file, "abcdef"), 3U);
    EXPECT_EQ(file.GetSize(), 10U);
    ASSERT_TRUE(file.Seek(50));
    EXPECT_EQ(Put(file, "abc"), 0U);
    EXPECT_EQ(file.limits, (std::vector<std::uint64_t>{10, 10, 50}));
    EXPECT_EQ(file.GetSize(), 10U);
}

TEST_F(LimitedFileTest, TakesAMaximumOnlyWhileTheLimitIsOff) {
    LimitedFile file;
    EXPECT_TRUE(file.SetMaxSize(5));
    EXPECT_TRUE(file.SetLimit(true));
    EXPECT_FALSE(file.SetMaxSize(6));
    EXPECT_EQ(file.GetMaxSize(), 5U);
    file.Close();
    EXPECT_TRUE(file.SetMaxSize(6));
}

TEST_F(MarkedFileTest, CallsTheHookBeforeAWriteThatCoversTheMark) {
    HookedMark file;
    ASSERT_TRUE(file.Create(kPath));
    file.SetMark(4);
    Put(file, "abcdefgh");
    EXPECT_TRUE(file.marks.empty()) << "not watched";
    file.SetWatch(true);
    ASSERT_TRUE(file.Seek(0));
    Put(file, "abcd");
    EXPECT_TRUE(file.marks.empty()) << "ends at the mark";
    Put(file, "e");
    EXPECT_EQ(file.marks.size(), 1U) << "starts at the mark";
    Put(file, "f");
    EXPECT_EQ(file.marks.size(), 1U) << "behind the mark";
    file.SetMark(8);
    ASSERT_TRUE(file.SetMaxSize(8) && file.SetLimit(true) && file.Seek(6));
    EXPECT_EQ(Put(file, "ghi"), 2U);
    EXPECT_EQ(file.marks.size(), 2U) << "covered as asked for, clipped or not";
    EXPECT_EQ(file.sizes, (std::vector<std::uint64_t>{8, 8}));
    file.Close();
    ASSERT_TRUE(file.Create(kPath));
    file.SetMark(0);
    Put(file, "a");
    EXPECT_EQ(file.marks.size(), 2U) << "closing ends the watch";
}

TEST_F(MarkedFileTest, AsksAgainOnlyForAMarkMovedForwardWithinTheWrite) {
    HookedMark file;
    ASSERT_TRUE(file.Create(kPath));
    file.SetWatch(true);
    file.SetMark(2);
    file.moves = {5, 7, 3};
    Put(file, std::string(10, 'x'));
    EXPECT_EQ(file.marks, (std::vector<std::uint64_t>{2, 5, 7}));
    EXPECT_EQ(file.GetMark(), 3U);
    EXPECT_EQ(file.sizes, (std::vector<std::uint64_t>{0, 0, 0}));
}

TEST_F(RingFileTest, HeaderLiesAtTheStart) {
    RingFile file;
    ASSERT_TRUE(file.Create(kPath));
    EXPECT_EQ(file.GetHead(), 24U);
    EXPECT_EQ(file.GetMark(), 24U);
    EXPECT_EQ(ReadWholeFile(kPath).size(), 24U);
    ASSERT_TRUE(file.SetHeaderMaxSize(0x0102030405060708));
    ASSERT_TRUE(file.SetHead(0x1122));
    EXPECT_EQ(file.GetMark(), 0x1122U);
    file.Close();
    using namespace std::string_literals;
    EXPECT_EQ(ReadWholeFile(kPath),
              "RING\0\0\0\0\x22\x11\0\0\0\0\0\0\x08\x07\x06\x05\x04\x03\x02\x01"s);

    RingFile again;
    ASSERT_TRUE(again.Open(kPath));
    EXPECT_EQ(again.GetHead(), 0x1122U);
    EXPECT_EQ(again.GetMark(), 0x1122U);
    EXPECT_EQ(again.GetHeaderMaxSize(), 0x0102030405060708U);
    EXPECT_EQ(again.GetMaxSize(), 0x0102030405060708U);
}

TEST_F(RingFileTest, OpensNothingButRings) {
    using namespace std::string_literals;
    const std::string good = "RINGabcd\x18\0\0\0\0\0\0\0\x18\0\0\0\0\0\0\0"s;
    for (const std::string& bytes :
         {""s, good.substr(0, 4), good.substr(0, 23), "RINg"s + good.substr(4),
          good.substr(0, 16) + "\x17\0\0\0\0\0\0\0"s}) {
        WriteWholeFile(kPath, bytes);
        RingFile file;
        EXPECT_FALSE(file.Open(kPath)) << bytes.size();
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(ReadWholeFile(kPath), bytes);
    }
    WriteWholeFile(kPath, good);
    RingFile file;
    EXPECT_TRUE(file.Open(kPath));
    file.Close();
    EXPECT_EQ(ReadWholeFile(kPath), good) << "an unchanged header isn't written";
}

TEST_F(RingFileTest, RefusesMaximaBelowItsHeader) {
    RingFile file;
    EXPECT_FALSE(file.SetMaxSize(23));
    EXPECT_TRUE(file.SetMaxSize(24));
    file.SetLimited(true);
    EXPECT_FALSE(file.SetMaxSize(24));
    EXPECT_FALSE(file.SetHeaderMaxSize(100));
    EXPECT_EQ(file.GetHeaderMaxSize(), 0U);
}

TEST_F(RingFileTest, FoldsPositionsBeyondTheMaximumOnce) {
    RingFile file;
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(100));
    ASSERT_TRUE(file.Seek(101));
    EXPECT_EQ(file.Tell(), 101U);
    file.SetLimited(true);
    for (const auto& [asked, got] :
         {std::pair{100U, 100U}, {101U, 25U}, {176U, 100U}, {177U, 101U}}) {
        ASSERT_TRUE(file.Seek(asked));
        EXPECT_EQ(file.Tell(), got);
    }
}

TEST_F(RingFileTest, WritesGoOnBehindTheHeader) {
    HookedRing file;
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(100));
    file.SetLimited(true);
    ASSERT_TRUE(file.SetHead(30) && file.Seek(90));
    EXPECT_EQ(Put(file, "0123456789abcdef"), 10U);
    EXPECT_EQ(file.Tell(), 24U);
    EXPECT_EQ(Put(file, "abcdef"), 6U);
    EXPECT_TRUE(file.marks.empty());
    file.moves = {60};
    Put(file, "g");
    EXPECT_EQ(file.marks, std::vector<std::uint64_t>{30});
    EXPECT_EQ(file.GetHead(), 60U);
    ASSERT_TRUE(file.Seek(95));
    EXPECT_EQ(Put(file, "vwxyz"), 5U);
    EXPECT_EQ(file.Tell(), 100U) << "an exact fit isn't clipped";
    EXPECT_EQ(Put(file, "ABC"), 0U);
    EXPECT_EQ(file.Tell(), 24U);
}

TEST_F(RingFileTest, ReadsGoOnBehindTheHeader) {
    WriteWholeFile(kPath,
                   std::string("RING\0\0\0\0\x18\0\0\0\0\0\0\0\x64\0\0\0\0\0\0\0abcdef", 30));
    RingFile file;
    ASSERT_TRUE(file.Open(kPath) && file.Seek(28));
    EXPECT_EQ(Get(file, 10), "ef");
    EXPECT_EQ(Get(file, 3), "abc") << "with the limit off too";
    WriteWholeFile("empty", std::string("RING\0\0\0\0\x18\0\0\0\0\0\0\0\x64\0\0\0\0\0\0\0", 24));
    RingFile empty;
    ASSERT_TRUE(empty.Open("empty"));
    EXPECT_EQ(Get(empty, 3), "") << "nothing there either";
}

TEST_F(RingFileTest, IsCutToALoweredMaximumAtTheFirstClippedWrite) {
    RingFile file;
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(1000));
    file.SetLimited(true);
    Put(file, std::string(900, 'x'));
    file.Close();
    ASSERT_TRUE(file.Open(kPath) && file.SetHeaderMaxSize(500));
    file.SetLimited(true);
    ASSERT_TRUE(file.Seek(400));
    EXPECT_EQ(Put(file, std::string(100, 'y')), 100U);
    EXPECT_EQ(file.GetSize(), 924U);
    Put(file, "z");
    EXPECT_EQ(file.GetSize(), 500U);
    EXPECT_EQ(file.Tell(), 24U);
}

TEST_F(RingFileTest, IsCutAtTheMaximumFromAnywhereBeyond) {
    RingFile file;
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(100));
    Put(file, std::string(300, 'x'));
    file.SetLimited(true);
    ASSERT_TRUE(file.Seek(290));
    ASSERT_EQ(file.Tell(), 214U);
    EXPECT_EQ(Put(file, "abc"), 0U);
    EXPECT_EQ(file.GetSize(), 100U);
    EXPECT_EQ(file.Tell(), 24U);
}

TEST_F(RingFileTest, IsEmptiedByNobodyWhileOpen) {
    RingFile file;
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(100));
    RingFile other;
    EXPECT_FALSE(other.Open(kPath));
    EXPECT_FALSE(other.Create(kPath));
    EXPECT_EQ(std::filesystem::file_size(kPath), 24U);
    file.Close();
    EXPECT_TRUE(other.Open(kPath));
}

}  // namespace
}  // namespace marvolen
