#include "platform/native_path.h"

#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(NativePath, DriveBecomesAFolder) {
    EXPECT_EQ(MapDrivePath("c:\\chl01.dbt"), "drive_c/chl01.dbt");
    EXPECT_EQ(MapDrivePath("D:\\Video\\gate 1.dbt"), "drive_d/Video/gate 1.dbt");
    EXPECT_EQ(MapDrivePath("c:/video//x.dbt"), "drive_c/video/x.dbt");
    EXPECT_EQ(MapDrivePath("c:chl01.dbt"), "drive_c/chl01.dbt");
    EXPECT_EQ(MapDrivePath("c:"), "drive_c");
}

TEST(NativePath, StaysOnItsDrive) {
    EXPECT_EQ(MapDrivePath("c:\\..\\..\\etc\\passwd"), "drive_c/etc/passwd");
    EXPECT_EQ(MapDrivePath("c:\\a\\.\\b\\..\\x.dbt"), "drive_c/a/x.dbt");
}

TEST(NativePath, OtherPathsAreNative) {
    for (const char* path :
         {"", "x.dbt", "/var/video/x.dbt", "../x.dbt", "1:\\x", ":\\x", "a\\b"}) {
        EXPECT_EQ(MapDrivePath(path), path);
    }
}

TEST(NativePath, MakesTheDriveButNoFolderOnIt) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(NativePath("c:\\missing\\x.dbt"), "drive_c/missing/x.dbt");
    EXPECT_TRUE(std::filesystem::is_directory("drive_c"));
    EXPECT_FALSE(std::filesystem::exists("drive_c/missing"));
    NativePath("plain/x.dbt");
    EXPECT_FALSE(std::filesystem::exists("plain"));
}

}  // namespace
}  // namespace marvolen
