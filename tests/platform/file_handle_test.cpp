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

class FileHandleTest : public ::testing::Test {
protected:
    const test::TemporaryFolder folder;
    FileHandle file, other;
    std::uint32_t moved = 99;
};

TEST_F(FileHandleTest, IsHeldByOneOnlyUnderWhateverNameAndProcess) {
    ASSERT_TRUE(file.Create("held") && file.Write("kept", 4, moved));
    std::filesystem::create_hard_link("held", "alias");
    const auto refuses = [this](const char* name) {
        return !other.Open(name) && !other.Create(name) && !other.OpenOrMake(name) &&
               !other.OpenShared(name) && other.OpenError() == FileOpenError::kInUse;
    };
    EXPECT_TRUE(refuses("held") && refuses("alias"));
    const pid_t child = fork();
    if (child == 0) _exit(refuses("held") ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::ReadWholeFile("held"), "kept");

    ASSERT_TRUE(file.OpenShared("alias") && other.OpenShared("held")) << "several may read";
    EXPECT_FALSE(file.Write("x", 1, moved) || file.Truncate());
    FileHandle third;
    EXPECT_FALSE(third.Create("held"));
    other.Close();
    file.Close();
    EXPECT_EQ(test::ReadWholeFile("held"), "kept");
    EXPECT_TRUE(third.Create("held"));
    EXPECT_EQ(third.Size(), 0U);
}

TEST_F(FileHandleTest, OpensFilesOnlyAndNeverWaits) {
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* name : {"folder", "folder/", ".", "pipe", "/dev/null", "/dev/full"}) {
        EXPECT_FALSE(file.Create(name) || file.OpenShared(name) || file.Open(name)) << name;
        EXPECT_EQ(file.OpenError(), FileOpenError::kNotAFile) << name;
    }
    for (const char* name : {"", "none", "none/none", "pipe/none"}) {
        EXPECT_FALSE(file.Open(name)) << name;
        EXPECT_EQ(file.OpenError(), FileOpenError::kMissing) << name;
    }
    EXPECT_FALSE(file.Create("none/none") || file.Open(std::string(5000, 'x')));
    EXPECT_EQ(file.OpenError(), FileOpenError::kInaccessible);
    EXPECT_FALSE(file.IsOpen() || file.Seek(0) || file.Truncate() || file.Write("x", 1, moved));
}

TEST_F(FileHandleTest, HasPositionsOf64Bits) {
    constexpr std::uint64_t kFar = 5'000'000'000;
    ASSERT_TRUE(file.Create("sparse") && file.Seek(kFar) && file.Write("end", 3, moved));
    EXPECT_EQ(file.Tell(), kFar + 3);
    char bytes[8] = "";
    ASSERT_TRUE(file.Seek(kFar) && file.Read(bytes, sizeof bytes, moved));
    EXPECT_EQ(std::string(bytes, moved), "end");
    ASSERT_TRUE(file.Seek(kFar + 1) && file.Truncate());
    EXPECT_EQ(file.Size(), kFar + 1);
    EXPECT_FALSE(file.Seek(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(file.Tell(), kFar + 1);
    EXPECT_TRUE(file.Seek(std::numeric_limits<std::int64_t>::max()));
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
    EXPECT_TRUE(file.RanOutOfSpace());
    EXPECT_TRUE(file.Write("y", 1, moved)) << "goes on when there is room again";
    EXPECT_FALSE(file.RanOutOfSpace());
    std::signal(SIGXFSZ, signalBefore);
}

}  // namespace
}  // namespace marvolen
