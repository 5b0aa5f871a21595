// What a render writes, and what it does when it can't.

#include "playback/avi_renderer.h"

#include "playback/split_name.h"
#include "tests/playback/checked_avi.h"

#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace marvolen::test {
namespace {

namespace fs = std::filesystem;

class AviRendererTest : public ::testing::Test, public RenderHost {
protected:
    std::string OutputName() override { return output; }
    PlaybackSelection Selection() override { return selection; }
    void EnableControls(bool flag) override { log += flag ? '+' : '-'; }
    const CapturedFrame& Show(std::int32_t position) override {
        return frames[static_cast<std::size_t>(position) % frames.size()];
    }
    bool GoesOn(const RenderReport&) override { return !onPosition || onPosition(); }
    void Complain(const char* text) override { log += text; }

    // A frame of letters, the first one a, with which its time ends too.
    void Add(int width, int height, std::uint32_t length) {
        const auto letter = static_cast<char>('a' + frames.size());
        frames.push_back({std::vector<std::uint8_t>(length + 3, static_cast<std::uint8_t>(letter)),
                          length, width, height, std::string("2026/11/23 01:52:2") + letter});
        selection.end = static_cast<std::int32_t>(frames.size()) - 1;
    }
    // Renders to path; "out.avi 352x240 ab|..." for each file, a letter a sample.
    std::string Render(const std::string& path = "out.avi") {
        log.clear();
        output = path;
        renderer.Render();
        std::string result;
        for (const RenderedFile& file : renderer.Report().files) {
            const CheckedAvi avi = CheckAvi(file.path);
            EXPECT_TRUE(avi.sound) << file.path;
            EXPECT_EQ(avi.samples[0].size(), file.samples);
            result += (result.empty() ? "" : "|") + file.path + ' ' + std::to_string(avi.width) +
                      'x' + std::to_string(avi.height) + ' ';
            for (std::size_t k = 0; k < avi.samples[0].size(); ++k) {
                result += avi.samples[1][k].at(18);
                const CapturedFrame& frame = frames[static_cast<std::size_t>(result.back() - 'a')];
                EXPECT_EQ(avi.samples[1][k], frame.timeText + '\0');
                EXPECT_EQ(avi.samples[0][k], std::string(frame.length, result.back()));
            }
        }
        return result;
    }

    const TemporaryFolder folder;
    std::string output;
    std::vector<CapturedFrame> frames;
    PlaybackSelection selection;
    std::function<bool()> onPosition;
    std::string log;
    AviRenderer renderer{*this, 1000000};
};

TEST_F(AviRendererTest, WritesTheSelectionAndNumbersFurtherFiles) {
    for (const std::uint32_t length : {301U, 302U, 1U}) Add(352, 240, length);
    EXPECT_EQ(Render(), "out.avi 352x240 abc");
    EXPECT_EQ(log, "-+");
    Add(704, 480, 400000);
    Add(-1, -1, 50);  // not decoded: neither in a file nor between files
    Add(704, 480, 600000);
    EXPECT_EQ(Render(), "out.avi 352x240 abc|out-01.avi 704x480 df");
    EXPECT_EQ(renderer.Report().skipped, 1U);
    Add(704, 480, 1);  // crosses the limit, and stays
    Add(704, 480, 1000001);
    Add(352, 480, 9);
    EXPECT_EQ(Render(),
              "out.avi 352x240 abc|out-02.avi 704x480 dfg|out-03.avi 704x480 h|"
              "out-04.avi 352x480 i")
        << "numbers go on";
    for (const PlaybackSelection& nothing : {PlaybackSelection{2, 1}, {4, 4}}) {
        selection = nothing;
        EXPECT_EQ(Render("none.avi"), "");
        EXPECT_FALSE(fs::exists("none.avi"));
    }
    selection = {0, 8};
    onPosition = [left = 2]() mutable { return --left > 0; };
    EXPECT_EQ(Render("c:\\stopped.avi"), "drive_c/stopped.avi 352x240 ab");
    for (const auto& [name, split] : {std::pair{"C:\\chl01.avi", "C:\\chl01-07.avi"},
                                      {"/a.b/c.d.avi", "/a.b/c.d-07.avi"},
                                      {"a.b\\clip", "a.b\\clip-07."},
                                      {"a\\b.c/clip", "a\\b.c/clip-07."},
                                      {".avi", "-07.avi"}}) {
        EXPECT_EQ(SplitName(name, 7), split);
    }
}

TEST_F(AviRendererTest, ComplainsOnceWhereAFileCannotBeCreated) {
    Add(352, 240, 100);
    Add(704, 480, 100);
    fs::create_directory("out-01.avi");
    WriteWholeFile("used.avi", "precious");
    FileHandle user;
    ASSERT_TRUE(user.OpenShared("used.avi"));
    for (const auto& [path, written] : {std::pair{"out.avi", "out.avi 352x240 a"},
                                        {"missing/out.avi", ""},
                                        {"used.avi", ""},
                                        {"", ""}}) {
        EXPECT_EQ(Render(path), written) << path;
        EXPECT_EQ(log, "-Error Creating AVI+") << path;
    }
    EXPECT_EQ(ReadWholeFile("used.avi"), "precious");
    user.Close();
    EXPECT_EQ(Render("used.avi"), "used.avi 352x240 a|used-02.avi 704x480 b") << "replaced";
}

class AviDiskTest : public AviRendererTest {
protected:
    AviDiskTest() { getrlimit(RLIMIT_FSIZE, &before); }
    ~AviDiskTest() override { SetRoom(before.rlim_cur); }
    bool SetRoom(rlim_t bytes) {
        const rlimit limit{bytes, before.rlim_max};
        std::signal(SIGXFSZ, bytes == before.rlim_cur ? SIG_DFL : SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    rlimit before{};
};

TEST_F(AviDiskTest, AFullOneEndsInAFileWithWhatHadRoom) {
    for (const std::uint32_t length : {22U, 21U, 20U}) Add(352, 240, length);
    Render();
    const auto whole = fs::file_size("out.avi");
    // What has room is there: the header, and samples with times, padding and index entries.
    const rlim_t ends[] = {320, 320 + 90, 320 + 90 + 90, 320 + 90 + 90 + 88};
    for (rlim_t room = 300; room <= whole; ++room) {
        fs::remove("out.avi");
        SetRoom(room);
        const std::string written = Render();
        const std::size_t fits = static_cast<std::size_t>(
            std::upper_bound(std::begin(ends), std::end(ends), room) - std::begin(ends));
        ASSERT_EQ(fs::exists("out.avi"), fits > 0) << room;
        ASSERT_EQ(renderer.Report().createFailed, fits == 0) << room;
        if (fits == 0) continue;
        ASSERT_EQ(written, "out.avi 352x240 " + std::string("abc").substr(0, fits - 1));
        ASSERT_TRUE(CheckAvi("out.avi").indexed && fs::file_size("out.avi") <= room) << room;
        ASSERT_EQ(renderer.Report().writeFailed, room < whole) << room;
    }
}

// Room that was promised is gone: within samples, within the index.
TEST_F(AviDiskTest, AFailingOneEndsInAFileUpToTheLastWholeSample) {
    constexpr rlim_t kSample = 8 + 100000 + 28;
    for (int k = 0; k < 8; ++k) Add(352, 240, 100000);
    for (const auto& [room, samples, indexed] : {std::tuple{5 * kSample, "abcd", true},
                                                 {312 + 5 * kSample, "abcde", false},
                                                 {312 + 8 * kSample + 8, "abcdefgh", false}}) {
        onPosition = [&, limit = room] { return SetRoom(limit); };
        EXPECT_EQ(Render(), std::string("out.avi 352x240 ") + samples);
        EXPECT_TRUE(renderer.Report().writeFailed) << room;
        EXPECT_EQ(CheckAvi("out.avi").indexed, indexed) << room;
        SetRoom(before.rlim_cur);
    }
}

// The document's example is a file of two samples.
TEST_F(AviRendererTest, ItsDocumentShowsAFile) {
    output = "out.avi";
    frames = {{{0xFF, 0xD8, 0x55, 0xFF, 0xD9}, 5, 16, 8, "2026/11/23 01:52:22"},
              {{0xFF, 0xD8, 0xFF, 0xD9}, 4, 16, 8, "2026/11/23 01:52:23"}};
    selection = {0, 1};
    renderer.Render();
    ASSERT_EQ(std::system("od -A x -t x1z -v out.avi > dump"), 0);
    EXPECT_NE(ReadWholeFile(AVI_DOCUMENT).find(ReadWholeFile("dump")), std::string::npos);
}

}  // namespace
}  // namespace marvolen::test
