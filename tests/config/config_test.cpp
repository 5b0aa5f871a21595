#include "config/channel_options.h"
#include "config/settings_file.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <sys/resource.h>

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

TEST_F(SettingsFile, IsReplacedWholeOrNotAtAll) {
    SaveSettings();
    EXPECT_EQ(fs::status(kSettingsFileName).permissions(), fs::perms(0600)) << "it has passwords";
    fs::create_directory("elsewhere");
    WriteWholeFile("elsewhere/long.rsf", std::string(70000, 'x'));
    fs::create_symlink("elsewhere/long.rsf", "link.rsf");
    fs::create_symlink("new.rsf", "elsewhere/dangling.rsf");
    WriteWholeFile("one.rsf", "1");
    WriteWholeFile(".recinfo.bin.tmp", "of a program that was killed");
    fs::create_hard_link("one.rsf", "two.rsf");
    const std::string table(reinterpret_cast<const char*>(&g_channelInfo), sizeof g_channelInfo);
    for (const auto& [name, reached] : {std::pair{"recinfo.bin", "recinfo.bin"},
                                        {"link.rsf", "elsewhere/long.rsf"},
                                        {"elsewhere/dangling.rsf", "elsewhere/new.rsf"},
                                        {"one.rsf", "two.rsf"}}) {
        SCOPED_TRACE(name);
        const bool wasLink = fs::is_symlink(name);
        if (fs::exists(reached)) fs::permissions(reached, fs::perms(0640));
        const fs::perms before = fs::exists(reached) ? fs::perms(0640) : fs::perms(0600);
        EXPECT_TRUE(WriteSettingsFile(name, g_channelInfo));
        EXPECT_EQ(ReadWholeFile(reached), table);
        EXPECT_EQ(fs::status(reached).permissions(), before);
        EXPECT_EQ(fs::is_symlink(name), wasLink);
        // A disk without room for all of it.
        ChannelTable other = g_channelInfo;
        other[0].host[0] = 'h';
        rlimit unlimited{};
        getrlimit(RLIMIT_FSIZE, &unlimited);
        const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limited{20000, unlimited.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
        EXPECT_FALSE(WriteSettingsFile(name, other));
        setrlimit(RLIMIT_FSIZE, &unlimited);
        std::signal(SIGXFSZ, signalBefore);
        EXPECT_TRUE(ReadWholeFile(reached) == table || name == std::string("one.rsf"));
    }
    EXPECT_FALSE(WriteSettingsFile("/dev/full", g_channelInfo));
    EXPECT_FALSE(WriteSettingsFile("missing/x.rsf", g_channelInfo));
    const auto files = std::distance(fs::recursive_directory_iterator("."), {});
    EXPECT_EQ(files, 8) << "a temporary file is left";
}

}  // namespace
}  // namespace marvolen
