#include "platform/native_path.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(NativePath, DrivesAreFoldersAndOtherPathsNative) {
    const char* const cases[][2] = {
        {"c:\\chl01.dbt", "drive_c/chl01.dbt"},
        {"D:\\Video\\gate 1.dbt", "drive_d/Video/gate 1.dbt"},
        {"c:/video//x.dbt", "drive_c/video/x.dbt"},
        {"c:chl01.dbt", "drive_c/chl01.dbt"},
        {"c:", "drive_c"},
        {"c:\\..\\..\\etc\\passwd", "drive_c/etc/passwd"},
        {"c:\\a\\.\\b\\..\\x.dbt", "drive_c/a/x.dbt"},
    };
    for (const auto& [path, native] : cases) EXPECT_EQ(MapDrivePath(path), native);
    for (const char* path : {"", "x.dbt", "/var/x.dbt", "../x.dbt", "1:\\x", ":\\x", "a\\b"}) {
        EXPECT_EQ(MapDrivePath(path), path);
    }
    const test::TemporaryFolder folder;
    EXPECT_EQ(NativePath("c:\\missing\\x.dbt"), "drive_c/missing/x.dbt");
    EXPECT_TRUE(std::filesystem::is_empty("drive_c")) << "the drive is made, no folder on it";
    NativePath("plain/x.dbt");
    EXPECT_FALSE(std::filesystem::exists("plain"));
}

}  // namespace
}  // namespace marvolen
