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
    SettingsFile() { g_channelInfo = FactoryChannelTable(); }
    ~SettingsFile() override { g_channelInfo = FactoryChannelTable(); }

    bool TableIsFactory() const {
        const ChannelTable factory = FactoryChannelTable();
        return std::memcmp(&factory, &g_channelInfo, sizeof factory) == 0;
    }

    const test::TemporaryFolder folder;
};

TEST_F(SettingsFile, OfAnotherSizeIsIgnored) {
    for (const std::size_t size : {0U, 1U, 25279U, 25281U, 50560U}) {
        WriteWholeFile(kSettingsFileName, std::string(size, 'x'));
        LoadSettings();
        EXPECT_TRUE(TableIsFactory()) << size;
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

TEST_F(SettingsFile, SavedOverALongerFileHasTheTableOnly) {
    WriteWholeFile(kSettingsFileName, std::string(70000, 'x'));
    SetFieldText(g_channelInfo[3].netName, "Gate");
    SaveSettings();
    ASSERT_EQ(fs::file_size(kSettingsFileName), 25280U);
    EXPECT_EQ(fs::status(kSettingsFileName).permissions(), fs::perms{0600}) << "it has passwords";
    g_channelInfo = FactoryChannelTable();
    LoadSettings();
    EXPECT_EQ(FieldText(g_channelInfo[3].netName), "Gate");
}

TEST_F(SettingsFile, OnAFullDiskIsAFailure) {
    EXPECT_FALSE(WriteSettingsFile("/dev/full", g_channelInfo));
}

}  // namespace
}  // namespace marvolen
