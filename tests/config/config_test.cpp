#include "config/channel_options.h"
#include "config/settings_file.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using test::ReadWholeFile;
using test::WriteWholeFile;

TEST(ChannelTable, FactoryValuesOfEveryChannel) {
    const ChannelTable table = FactoryChannelTable();
    for (int k = 0; k < kChannelCount; ++k) {
        const ChannelInfo& info = table[static_cast<std::size_t>(k)];
        EXPECT_EQ(info.channelIndex, k);
        EXPECT_EQ(FieldText(info.netName), "");
        EXPECT_EQ(FieldText(info.host), "");
        EXPECT_EQ(FieldText(info.port), "80");
        EXPECT_EQ(FieldText(info.userName), "root");
        EXPECT_EQ(FieldText(info.password), "tuvk");
        EXPECT_EQ(info.maxSizeMB, 1024);
        EXPECT_EQ(CameraOption(info.cameraIndex).label, "Camera 1");
        EXPECT_EQ(SizeOption(info.sizeIndex).label, "Middle");
        EXPECT_EQ(RateOptionRow(info.rateIndex).label, "30  fps");
    }
    EXPECT_EQ(FieldText(table[0].recordPath), "c:\\chl01.dbt");
    EXPECT_EQ(FieldText(table[15].recordPath), "c:\\chl16.dbt");
}

TEST(ChannelOptions, IndexOutsideItsTableCountsAsTheFactoryRow) {
    for (const std::int32_t index : {-1, 10, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(CameraOption(index).query, "camera=1") << index;
        EXPECT_EQ(SizeOption(index).query, "&fmt=sif") << index;
        EXPECT_EQ(RateOptionRow(index).query, "") << index;
    }
    EXPECT_EQ(CameraOption(4).query, "camera=1");
    EXPECT_EQ(SizeOption(3).query, "&fmt=sif");
}

class SettingsFile : public ::testing::Test {
protected:
    ~SettingsFile() override { g_channelInfo = FactoryChannelTable(); }

    const test::TemporaryFolder folder;
};

TEST_F(SettingsFile, OfAnotherSizeIsIgnored) {
    for (const std::size_t size : {0U, 1U, 25279U, 25281U, 50560U}) {
        WriteWholeFile(kSettingsFileName, std::string(size, 'x'));
        ChannelTable table = FactoryChannelTable();
        EXPECT_FALSE(ReadSettingsFile(kSettingsFileName, table)) << size;
        EXPECT_EQ(table[0].host[0], '\0');
    }
}

TEST_F(SettingsFile, OfTheRightSizeReplacesEveryByte) {
    std::string bytes(sizeof(ChannelTable), '\0');
    for (std::size_t k = 0; k < bytes.size(); ++k) bytes[k] = static_cast<char>(k * 7 + k / 251);
    WriteWholeFile(kSettingsFileName, bytes);
    LoadSettings();
    EXPECT_EQ(std::memcmp(bytes.data(), &g_channelInfo, bytes.size()), 0);
    fs::remove(kSettingsFileName);
    SaveSettings();
    EXPECT_EQ(ReadWholeFile(kSettingsFileName), bytes);
}

// It has passwords: only its owner may read it, who may protect it from being written.
TEST_F(SettingsFile, SavedOverALongerFileHasTheTableOnly) {
    WriteWholeFile(kSettingsFileName, std::string(70000, 'x'));
    for (const fs::perms before : {fs::perms(0777), fs::perms(0644), fs::perms(0444)}) {
        fs::permissions(kSettingsFileName, before);
        const bool written = WriteSettingsFile(kSettingsFileName, g_channelInfo);
        EXPECT_TRUE(written || before == fs::perms(0444)) << "the superuser writes it all the same";
        const fs::perms after = fs::status(kSettingsFileName).permissions();
        EXPECT_EQ(after, written ? before & fs::perms::owner_all : before);
        EXPECT_EQ(fs::file_size(kSettingsFileName), 25280U);
    }
    EXPECT_FALSE(WriteSettingsFile("/dev/full", g_channelInfo));
}

}  // namespace
}  // namespace marvolen
