#include "app/log_text.h"

#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace marvolen {
namespace {

constexpr SYSTEMTIME kLeapMorning{2004, 2, 0, 29, 8, 15, 0, 999};

ChannelInfo Named(std::string_view name) {
    ChannelInfo info{};
    SetFieldText(info.netName, name);
    return info;
}

TEST(LogText, ANameWithoutAnEndStaysInItsField) {
    ChannelInfo info{};
    std::fill(std::begin(info.netName), std::end(info.netName), 'n');
    std::fill(std::begin(info.host), std::end(info.host), 'h');
    EXPECT_EQ(LogEntryTexts(1, info, kLeapMorning, "")[1], std::string(kTextFieldSize - 1, 'n'));
}

TEST(LogText, ALineIsTheTextsAsTheyAre) {
    const LogTexts gate = LogEntryTexts(3, Named("Gate"), kLeapMorning, "Network close.");
    EXPECT_EQ(ExportLine(gate), "03,Gate,2004/02/29 08:15:00,Network close.\n");
    EXPECT_EQ(ExportLine(gate).size(), 43U);
    EXPECT_EQ(ExportLine(LogTexts{"16", "", "t", "a, \"b\"\n"}), "16,,t,a, \"b\"\n\n");
    EXPECT_EQ(ExportLine(LogTexts{"01", "Tür, Süd", "", ""}),
              "01,T\xC3\xBCr, S\xC3\xBC"
              "d,,\n");
    EXPECT_EQ(ExportLine({}), "\n");
}

class LogFile : public ::testing::Test {
protected:
    bool Write(const std::string& path) {
        return WriteLogFile(path, static_cast<int>(rows.size()), [this](int row) {
            return std::span<const std::string>(rows[static_cast<std::size_t>(row)]);
        });
    }

    const test::TemporaryFolder folder;
    std::vector<LogTexts> rows = {{"02", "b", "t2", "m2"}, {"01", "a", "t1", "m1"}};
};

TEST_F(LogFile, HoldsTheRowsInOrderAndNothingElse) {
    test::WriteWholeFile("log.csv", std::string(1000, 'x'));
    EXPECT_TRUE(Write("log.csv"));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), "02,b,t2,m2\n01,a,t1,m1\n");
    rows.clear();
    EXPECT_TRUE(Write("log.csv"));
    EXPECT_EQ(test::ReadWholeFile("log.csv"), "");
}

TEST_F(LogFile, OnAFullDiskIsAFailure) {
    EXPECT_FALSE(Write("/dev/full"));  // found out when the file is closed
    rows.resize(100'000, rows.front());
    EXPECT_FALSE(Write("/dev/full"));  // found out on the way
}

}  // namespace
}  // namespace marvolen
