#include "app/log_text.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

TEST(LogText, FieldsStayWithinTheirEnds) {
    ChannelInfo info{};
    std::fill(std::begin(info.netName), std::end(info.netName), 'n');
    std::fill(std::begin(info.host), std::end(info.host), 'h');
    EXPECT_EQ(LogEntryTexts(1, info, {}, "")[1], std::string(kTextFieldSize - 1, 'n'));
    EXPECT_EQ(ExportLine({}), "\n");
}

TEST(LogFile, ReplacesAnotherAndFailsOnAFullDisk) {
    const test::TemporaryFolder folder;
    const std::vector<LogTexts> rows(100'000, LogTexts{"02", "b", "t", "m"});
    const auto write = [&](const char* path, int count) {
        return WriteLogFile(path, count, [&](int row) {
            return std::span<const std::string>(rows[static_cast<std::size_t>(row)]);
        });
    };
    test::WriteWholeFile("log.csv", std::string(1000, 'x'));
    EXPECT_TRUE(write("log.csv", 2));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), "02,b,t,m\n02,b,t,m\n");
    EXPECT_FALSE(write("/dev/full", 1));        // found out when the file is closed
    EXPECT_FALSE(write("/dev/full", 100'000));  // found out on the way
}

}  // namespace
}  // namespace marvolen
