#include "config/settings_file.h"

#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

namespace marvolen {
namespace {

namespace fs = std::filesystem;
using test::ReadWholeFile;
using test::WriteWholeFile;

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
