// The file classes where a record file doesn't reach: limit and watch off, odd positions.

#include "record/ring_file.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <string>

namespace marvolen::test {
namespace {

using namespace std::string_literals;

constexpr const char* kPath = "ring";

std::uint32_t Put(BasicFile& file, const std::string& bytes) {
    std::uint32_t put = 99;
    EXPECT_TRUE(file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &put));
    return put;
}

TEST(RingFile, TurnsBehindItsHeaderAndIsCutToALoweredMaximum) {
    const TemporaryFolder folder;
    RingFile file;
    EXPECT_FALSE(file.SetMaxSize(23));
    ASSERT_TRUE(file.Create(kPath) && file.SetHeaderMaxSize(100));
    Put(file, "abc");
    char bytes[9] = {};
    std::uint32_t got = 0;
    EXPECT_TRUE(file.Read(bytes, sizeof bytes, &got)) << "turns with the limit off too";
    EXPECT_EQ(std::string(bytes, got), "abc");
    file.SetLimited(true);
    EXPECT_FALSE(file.SetHeaderMaxSize(50));
    for (const auto& [asked, told] :
         {std::pair{100U, 100U}, {101U, 25U}, {176U, 100U}, {177U, 101U}}) {
        ASSERT_TRUE(file.Seek(asked));
        EXPECT_EQ(file.Tell(), told);
    }
    ASSERT_TRUE(file.SetHead(30) && file.Seek(95));
    EXPECT_EQ(Put(file, "vwxyz"), 5U);
    EXPECT_EQ(file.Tell(), 100U) << "an exact fit isn't clipped";
    EXPECT_EQ(Put(file, "ABC"), 0U);
    EXPECT_EQ(file.Tell(), 24U);
    file.Close();
    for (const std::uint64_t from : {40U, 80U}) {  // below and beyond the lowered maximum
        ASSERT_TRUE(file.Open(kPath) && file.SetHeaderMaxSize(50) && file.Seek(99));
        EXPECT_EQ(file.GetMark(), 30U);
        Put(file, "x");
        file.SetLimited(true);
        ASSERT_TRUE(file.Seek(from));
        EXPECT_EQ(Put(file, "0123456789abcdef"), from == 40 ? 10U : 0U);
        EXPECT_EQ(file.GetSize(), 50U);
        EXPECT_EQ(file.Tell(), 24U);
        file.Close();
    }
    EXPECT_EQ(ReadWholeFile(kPath).substr(0, 24),
              "RING\0\0\0\0\x1E\0\0\0\0\0\0\0\x32\0\0\0\0\0\0\0"s);
}

}  // namespace
}  // namespace marvolen::test
