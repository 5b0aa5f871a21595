// record_file export: which records it takes, and what independent players make of them.

#include "tests/playback/picture_recording.h"
#include "tests/record/tool_runner.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <numeric>
#include <sstream>

namespace marvolen::test {
namespace {

namespace fs = std::filesystem;

class ExportTest : public PictureRecording, protected ToolRunner {
protected:
    // With options divided by "|".
    int Export(const std::string& options = "") {
        std::vector<std::string> arguments = {"export", path, "out.avi"};
        std::istringstream text(options);
        for (std::string option; std::getline(text, option, '|');) arguments.push_back(option);
        return RunTool(arguments);
    }
    // What a player prints. It may complain of stream 1 only: plain text is no codec to it.
    static std::string Play(const std::string& command) {
        EXPECT_EQ(std::system((command + " > printed 2> complaints").c_str()), 0) << command;
        std::istringstream complaints(ReadWholeFile("complaints"));
        for (std::string line; std::getline(complaints, line);) {
            EXPECT_TRUE(line.find("stream 1") != line.npos || line.starts_with("Consider increas"))
                << command << ": " << line;
        }
        return ReadWholeFile("printed");
    }
};

TEST_F(ExportTest, WritesTheRecordsFromAToB) {
    ASSERT_TRUE(Create(1048576));
    Record("flat", 700);
    Close();
    for (const auto& [options, from, to] :
         {std::tuple{"", 0U, 699U},
          {"--first|0|--last|0", 0, 0},
          {"--last|601|--first|598", 598, 601},
          {"--first|2026/11/23 08:15:01|--last|2026/11/23 08:15:01", 3, 4},
          {"--first|2026/11/23 08:15:01.201|--last|2026/11/23 08:15:02.000", 4, 5},
          {"--first|2026/11/23 08:19:39|--last|2100/12/31 23:59:59", 698, 699}}) {
        ASSERT_EQ(Export(options), 0) << err;
        const CheckedAvi avi = CheckAvi("out.avi");
        ASSERT_TRUE(avi.sound) << options;
        ASSERT_EQ(avi.samples[1].size(), to - from + 1) << options;
        EXPECT_EQ(avi.samples[1].front(), FormatTime(TimeOf(from)) + '\0');
        EXPECT_EQ(avi.samples[0].front(), pictures[from]);
        EXPECT_EQ(avi.samples[0].back(), pictures[to]);
    }
    EXPECT_EQ(Export("--quiet"), 0);
    EXPECT_EQ(out + err, "");
    fs::remove("out.avi");
    EXPECT_EQ(Export("--first|2026/11/23 08:15:0x"), 2);
    EXPECT_EQ(Export("--first|2026/11/23 08:15:00.801|--last|2026/11/23 08:15:00.900"), 1);
    EXPECT_TRUE(err == path + ": no such records\n" && !fs::exists("out.avi"));
    fs::copy(path, "out.avi");
    EXPECT_EQ(Export(), 2);
    EXPECT_EQ(ReadWholeFile("out.avi"), ReadWholeFile(path)) << "a recording is not replaced";
    fs::remove("out.avi");
    fs::create_directory("out.avi");
    EXPECT_EQ(Export(), 2);
    EXPECT_EQ(err, "out.avi: Error Creating AVI\n");
}

TEST_F(ExportTest, EndsWithAWholeFileWhenAsked) {
    ASSERT_TRUE(Create(1048576));
    Record("flat", 2);
    Close();
    // Ctrl+C, pressed as the bar is drawn behind the first picture.
    class Interrupt : public std::stringbuf {
        int sync() override { return std::raise(SIGINT); }
    } interrupt;
    std::ostream bar(&interrupt);
    EXPECT_EQ(RunRecordTool({"export", path, "out.avi"}, bar, bar, ProgressBar::kDrawn), 2);
    EXPECT_TRUE(CheckAvi("out.avi").sound);
    EXPECT_EQ(CheckAvi("out.avi").samples[0], std::vector{pictures[0]});
}

TEST_F(ExportTest, IsPlayedByOthers) {
    ASSERT_TRUE(Create(4194304));
    Record("standard_2x2", 100);
    Record("other_64x64", 10);
    Close();
    ASSERT_EQ(Export(), 0);
    EXPECT_EQ(out, "out.avi: 100 pictures\nout-01.avi: 10 pictures\n");
    const std::string probe =
        "ffprobe -v warning -count_packets -of csv=p=0 -show_entries stream=codec_type,codec_name,"
        "codec_tag_string,width,height,r_frame_rate,nb_read_packets ";
    EXPECT_EQ(Play(probe + "out.avi"),
              "mjpeg,video,MJPG,35,37,30000/1001,100\n"
              "unknown,subtitle,[0][0][0][0],N/A,N/A,0/0,100\n");
    const std::string play = "ffmpeg -v warning -i out.avi ";
    EXPECT_EQ(Play(play + "-c copy -map 0:0 -f rawvideo -"),
              std::accumulate(pictures.begin(), pictures.end() - 10, std::string()));
    Play("ffmpeg -v warning -i out-01.avi -map 0:0 -f null -");  // decodes every picture
    for (const std::size_t k : {0U, 1U, 42U, 99U}) {
        const double seconds = (static_cast<double>(k) - 0.4) * 1001 / 30000;
        EXPECT_EQ(Play("ffmpeg -v warning -ss " + std::to_string(seconds) +
                       " -i out.avi -map 0:0 -c copy -frames:v 1 -f rawvideo -"),
                  pictures[k])
            << k;
    }
}

}  // namespace
}  // namespace marvolen::test
