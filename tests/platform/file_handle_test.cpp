#include "platform/file_handle.h"

#include "tests/support/temporary_folder.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using test::ReadWholeFile;
using test::WriteWholeFile;

class FileHandleTest : public ::testing::Test {
protected:
    const test::TemporaryFolder folder;
    FileHandle file;
    std::uint32_t moved = 99;
};

TEST_F(FileHandleTest, IsHeldByOneOnly) {
    ASSERT_TRUE(file.Create("held"));
    ASSERT_TRUE(file.Write("kept", 4, moved));
    fs::create_hard_link("held", "alias");
    for (const char* name : {"held", "alias"}) {
        FileHandle other;
        EXPECT_FALSE(other.Open(name));
        EXPECT_FALSE(other.Create(name));
        EXPECT_FALSE(other.OpenShared(name));
        EXPECT_EQ(other.OpenError(), FileOpenError::kInUse);
        EXPECT_FALSE(other.IsOpen());
    }
    EXPECT_EQ(ReadWholeFile("held"), "kept");
    file.Close();
    FileHandle other;
    EXPECT_TRUE(other.Open("alias"));
    EXPECT_EQ(other.OpenError(), FileOpenError::kNone);
}

TEST_F(FileHandleTest, IsHeldAgainstOtherProcesses) {
    ASSERT_TRUE(file.Create("held"));
    const pid_t child = fork();
    if (child == 0) {
        // The child's copy of the descriptor holds the file as well, so it is let go of last.
        FileHandle other;
        const bool opened = other.Open("held") || other.Create("held");
        _exit(opened ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(FileHandleTest, SharedHoldersKeepOutExclusiveOnes) {
    WriteWholeFile("file", "bytes");
    FileHandle second;
    ASSERT_TRUE(file.OpenShared("file") && second.OpenShared("file"));
    EXPECT_FALSE(file.Write("x", 1, moved));
    EXPECT_FALSE(file.Truncate());
    FileHandle exclusive;
    EXPECT_FALSE(exclusive.Create("file"));
    EXPECT_EQ(exclusive.OpenError(), FileOpenError::kInUse);
    second.Close();
    file.Close();
    EXPECT_EQ(ReadWholeFile("file"), "bytes");
    EXPECT_TRUE(exclusive.Create("file"));
    EXPECT_EQ(exclusive.Size(), 0U);
}

TEST_F(FileHandleTest, OpensFilesOnlyAndNeverWaits) {
    fs::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* name : {"folder", "folder/", ".", "pipe", "/dev/null", "/dev/full"}) {
        EXPECT_FALSE(file.Create(name)) << name;
        EXPECT_FALSE(file.Open(name)) << name;
        EXPECT_EQ(file.OpenError(), FileOpenError::kNotAFile) << name;
        EXPECT_FALSE(file.OpenShared(name)) << name;
        EXPECT_FALSE(file.IsOpen());
    }
    for (const char* name : {"", "none", "none/none", "pipe/none"}) {
        EXPECT_FALSE(file.Open(name)) << name;
        EXPECT_EQ(file.OpenError(), FileOpenError::kMissing) << name;
    }
    EXPECT_FALSE(file.Create(""));
    EXPECT_FALSE(file.Create("none/none"));
    EXPECT_FALSE(file.Open(std::string(5000, 'x')));
    EXPECT_EQ(file.OpenError(), FileOpenError::kInaccessible);
}

TEST_F(FileHandleTest, RefusesAFileThatMayNotBeWritten) {
    WriteWholeFile("protected", "bytes");
    fs::permissions("protected", fs::perms(0444));
    fs::permissions(".", fs::perms::all);
    const bool root = geteuid() == 0;
    if (root) {
        ASSERT_EQ(seteuid(65534), 0);
    }
    const bool opened = file.Open("protected") || file.Create("protected");
    const FileOpenError error = file.OpenError();
    const bool shared = file.OpenShared("protected");
    if (root) {
        ASSERT_EQ(seteuid(0), 0);
    }
    EXPECT_FALSE(opened);
    EXPECT_EQ(error, FileOpenError::kInaccessible);
    EXPECT_TRUE(shared);
    EXPECT_EQ(ReadWholeFile("protected"), "bytes");
}

TEST_F(FileHandleTest, HasPositionsOf64Bits) {
    constexpr std::uint64_t kFar = 5'000'000'000;
    ASSERT_TRUE(file.Create("sparse"));
    ASSERT_TRUE(file.Seek(kFar) && file.Write("end", 3, moved));
    EXPECT_EQ(file.Tell(), kFar + 3);
    EXPECT_EQ(file.Size(), kFar + 3);
    char bytes[8] = "";
    ASSERT_TRUE(file.Seek(kFar) && file.Read(bytes, sizeof bytes, moved));
    EXPECT_EQ(std::string(bytes, moved), "end");
    ASSERT_TRUE(file.Seek(kFar + 1) && file.Truncate());
    EXPECT_EQ(file.Size(), kFar + 1);
    EXPECT_FALSE(file.Seek(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(file.Tell(), kFar + 1);
    EXPECT_TRUE(file.Seek(std::numeric_limits<std::int64_t>::max()));
    EXPECT_TRUE(file.Read(bytes, 1, moved) ? moved == 0 : true);
    EXPECT_FALSE(file.Write("x", 1, moved));
    EXPECT_EQ(moved, 0U);
}

TEST_F(FileHandleTest, SaysHowMuchAFailedWriteMoved) {
    ASSERT_TRUE(file.Create("limited"));
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written = file.Write(std::string(1500, 'x').data(), 1500, moved);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_FALSE(written);
    EXPECT_EQ(moved, 1000U);
    EXPECT_EQ(file.Tell(), 1000U);
    EXPECT_TRUE(file.Write("y", 1, moved)) << "goes on when there is room again";
    std::signal(SIGXFSZ, signalBefore);
}

TEST_F(FileHandleTest, ClosedDoesNothing) {
    char byte = 0;
    EXPECT_FALSE(file.Read(&byte, 1, moved));
    EXPECT_EQ(moved, 0U);
    EXPECT_FALSE(file.Write(&byte, 1, moved) || file.Seek(0) || file.Truncate());
    EXPECT_EQ(file.Size(), 0U);
    file.Close();
}

}  // namespace
}  // namespace marvolen
