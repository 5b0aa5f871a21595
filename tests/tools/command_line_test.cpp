#include "tools/camera_server/command_line.h"

#include "config/settings_file.h"
#include "platform/text_field.h"
#include "tests/support/temporary_folder.h"
#include "tools/camera_server/control.h"
#include "tools/camera_server/folder_pictures.h"
#include "tools/camera_server/pattern_pictures.h"
#include "tools/camera_server/settings_writer.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace marvolen {
namespace {

CommandLine Parsed(const std::vector<std::string>& arguments) {
    CommandLine commandLine;
    std::string error;
    EXPECT_TRUE(ParseCommandLine(arguments, commandLine, error)) << error;
    return commandLine;
}

std::string ErrorOf(const std::vector<std::string>& arguments) {
    CommandLine commandLine;
    std::string error;
    EXPECT_FALSE(ParseCommandLine(arguments, commandLine, error));
    return error;
}

TEST(CommandLineTest, WithoutOptionsSixteenCamerasServeOnLoopback) {
    const CommandLine line = Parsed({});
    EXPECT_EQ(line.server.channelCount, 16);
    EXPECT_EQ(line.server.address, "127.0.0.1");
    EXPECT_EQ(line.server.basePort, 8101);
    EXPECT_TRUE(line.server.checkCredentials);
    EXPECT_FALSE(line.server.keepSent) << "would grow without end";
    EXPECT_EQ(line.names.size(), 16U);
}

TEST(CommandLineTest, FaultsAndFormsAreOrderedByChannelWhateverTheOrderOfOptions) {
    const CommandLine line = Parsed({"--fault", "all=garbage", "--fault", "3=close-after:5",
                                     "--single=2", "--channels", "4", "--port=9000"});
    const std::vector<Fault> expected{MakeFault(FaultKind::Garbage),
                                      MakeFault(FaultKind::Garbage),
                                      {FaultKind::CloseAfter, 5},
                                      MakeFault(FaultKind::Garbage)};
    EXPECT_EQ(line.server.faults, expected);
    EXPECT_EQ(line.server.singlePictures, (std::vector<bool>{false, true, false, false}));
    EXPECT_EQ(line.server.basePort, 9000);
}

TEST(CommandLineTest, MistakesAreNamed) {
    EXPECT_EQ(ErrorOf({"--colour", "red"}), "unknown option --colour");
    EXPECT_EQ(ErrorOf({"--port"}), "--port needs a value");
    EXPECT_EQ(ErrorOf({"--channels", "17"}), "--channels can't be \"17\"");
    EXPECT_EQ(ErrorOf({"--fault", "5=stall", "--channels=4"}), "--fault can't be \"5=stall\"");
    EXPECT_EQ(ErrorOf({"--fault", "5=refuse", "--channels=4"}), "--fault can't be \"5=refuse\"");
    EXPECT_EQ(ErrorOf({"--size-row=3"}), "--size-row can't be \"3\"");
    EXPECT_EQ(ErrorOf({"--port=65530"}), "the last channel's port lies beyond 65535");
}

TEST(CommandLineTest, HelpNamesEveryOptionFaultAndCommand) {
    const std::string help = HelpText();
    for (const char* word :
         {"--address",        "--port",          "--channels", "--user",        "--password",
          "--no-auth",        "--single",        "--sent-dir", "--loop",        "--folder",
          "--write-settings", "--settings-only", "--names",    "--record-path", "--max-size",
          "--camera-row",     "--size-row",      "--rate-row", "--fault",       "bit-flip",
          "drop C",           "stats",           "quit"}) {
        EXPECT_NE(help.find(word), std::string::npos) << word;
    }
}

TEST(SettingsWriterTest, TheTableReachesTheServer) {
    const test::TemporaryFolder folder;
    const CommandLine line = Parsed({"--address",     "0.0.0.0",
                                     "--port",        "7001",
                                     "--channels",    "2",
                                     "--user",        "eve",
                                     "--password",    "x",
                                     "--names",       "Yard,Hall",
                                     "--record-path", "/data/%02d.dbt",
                                     "--max-size",    "12",
                                     "--camera-row",  "3",
                                     "--size-row",    "0",
                                     "--rate-row",    "9"});
    ASSERT_TRUE(WriteSettingsFile("recinfo.bin", MakeChannelTable(line)));
    EXPECT_EQ(std::filesystem::file_size("recinfo.bin"), 25280U);
    ChannelTable table{};
    ASSERT_TRUE(ReadSettingsFile("recinfo.bin", table));
    const ChannelInfo& second = table[1];
    EXPECT_EQ(second.channelIndex, 1);
    EXPECT_EQ(FieldText(second.netName), "Hall");
    EXPECT_EQ(FieldText(second.host), "127.0.0.1");
    EXPECT_EQ(FieldText(second.port), "7002");
    EXPECT_EQ(FieldText(second.userName), "eve");
    EXPECT_EQ(FieldText(second.password), "x");
    EXPECT_EQ(FieldText(second.recordPath), "/data/02.dbt");
    EXPECT_EQ(second.maxSizeMB, 12);
    EXPECT_EQ(second.cameraIndex, 3);
    EXPECT_EQ(second.sizeIndex, 0);
    EXPECT_EQ(second.rateIndex, 9);
    EXPECT_EQ(FieldText(table[2].host), "") << "unused";
    EXPECT_EQ(table[15].channelIndex, 15);
}

TEST(SettingsWriterTest, PathsAreNumberedOnceAndOnlyWhereAsked) {
    EXPECT_EQ(NumberedPath("c:\\chl%02d.dbt", 7), "c:\\chl07.dbt");
    EXPECT_EQ(NumberedPath("%d/%d", 12), "12/%d");
    EXPECT_EQ(NumberedPath("100%s.dbt", 3), "100%s.dbt");
}

TEST(ControlTest, CommandsAreCarriedOutOrRefused) {
    CameraServer server({.channelCount = 2}, std::make_shared<PatternPictures>());
    ASSERT_TRUE(server.Start());
    EXPECT_EQ(RunCommand("fault 2 close-after:3", server, 2).text, "ok\n");
    EXPECT_EQ(RunCommand("  fault   all none ", server, 2).text, "ok\n");
    EXPECT_EQ(RunCommand("drop all", server, 2).text, "ok\n");
    EXPECT_EQ(RunCommand("stats", server, 2).text,
              "NET.1 connections 0 open 0 requests 0 sent 0 bytes 0 skipped 0\n"
              "NET.2 connections 0 open 0 requests 0 sent 0 bytes 0 skipped 0\nok\n");
    for (const char* wrong :
         {"fault 3 none", "fault 1", "fault 1 odd", "drop 0", "stats now", "go"}) {
        EXPECT_EQ(RunCommand(wrong, server, 2).text.find("error"), 0U) << wrong;
    }
    EXPECT_TRUE(RunCommand("quit", server, 2).quit);
    EXPECT_EQ(RunCommand("", server, 2).text, "");
}

TEST(FolderPicturesTest, ServesTheJpegFilesInTheOrderOfTheirNames) {
    const test::TemporaryFolder folder;
    FolderPictures pictures;
    EXPECT_FALSE(pictures.Load("nowhere"));
    EXPECT_FALSE(pictures.Load("."));
    test::WriteWholeFile("b.JPG",
                         "\xFF\xD8"
                         "b\xFF\xD9");
    test::WriteWholeFile("a.jpeg",
                         "\xFF\xD8"
                         "a\xFF\xD9");
    test::WriteWholeFile("c.jpg", "no picture");
    test::WriteWholeFile("d.txt",
                         "\xFF\xD8"
                         "d\xFF\xD9");
    ASSERT_TRUE(pictures.Load("."));
    ASSERT_EQ(pictures.Count(), 2U);
    EXPECT_EQ(pictures.At({}, 0)->jpeg[2], 'a');
    EXPECT_EQ(pictures.At({}, 1)->jpeg[2], 'b');
    EXPECT_EQ(pictures.At({}, 2), pictures.At({}, 0));
}

}  // namespace
}  // namespace marvolen
