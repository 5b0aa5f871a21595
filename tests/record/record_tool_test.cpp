// What the verifier finds, and what record_file prints.

#include "record/record_verifier.h"
#include "tests/record/record_fixture.h"
#include "tests/record/tool_runner.h"
#include "tools/record_file/json_text.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

class RecordTool : public RecordFixture, protected ToolRunner {
protected:
    // A picture of 100 bytes as far as the verifier looks.
    static std::string Picture(int k) {
        return "\xFF\xD8" + std::string(96, static_cast<char>(k)) + "\xFF\xD9";
    }
    void MakePictures(int count, std::uint64_t maxSize) {
        ASSERT_TRUE(Create(maxSize));
        for (int k = 0; k < count; ++k) {
            const auto second = static_cast<std::uint16_t>(k % 60);
            const SYSTEMTIME time{2004, 2, 0, 29, 8, 15, second, 40};
            ASSERT_TRUE(AppendFrame(Picture(k).data(), 100, time));
        }
        Close();
    }
    // Does what a line of the transcript says; returns what it prints.
    std::string Do(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        std::array<std::uint64_t, 3> n{};
        words >> verb;
        if (verb == "$") {
            const std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
            const int status = RunTool(arguments);
            return out + err + "= " + std::to_string(status) + '\n';
        }
        words >> n[0] >> n[1] >> n[2];
        if (verb == "pictures") MakePictures(static_cast<int>(n[0]), n[1]);
        if (verb == "patch") Patch(n[0], &n[2], n[1]);
        if (verb == "cut") Cut(n[0]);
        const bool reopened = (verb == "hold" || verb == "bytes") && Reopen(kMiB);
        if (verb == "bytes") {
            EXPECT_TRUE(reopened && Append(static_cast<std::uint32_t>(n[0])));
            Close();
        }
        return "";
    }
};

// The lines that begin with a verb are done; what they print must be what follows them.
TEST_F(RecordTool, PrintsWhatTheTranscriptShows) {
    const std::string shown = ReadWholeFile(MARVOLEN_RECORD_TOOL_TRANSCRIPT);
    std::string done;
    std::istringstream lines(shown);
    for (std::string line; std::getline(lines, line);) {
        const std::string verb = line.substr(0, line.find(' '));
        if (line.empty() || line[0] == '#') done += line + '\n';
        for (const char* known : {"$", "pictures", "bytes", "patch", "cut", "hold"}) {
            if (verb == known) done += line + '\n' + Do(line);
        }
    }
    EXPECT_EQ(done, shown);
}

TEST_F(RecordTool, ExtractWritesAPicture) {
    // Wrapped, so that some picture lies in two pieces.
    MakePictures(1500, 24 + 2 * (kBlock + 60000) + 50);
    ASSERT_TRUE(Read());
    const auto count = static_cast<int>(file->RecordCount());
    file->CloseReader();
    for (int number = 0; number < count; number += 7) {
        ASSERT_EQ(RunTool({"extract", path, std::to_string(number), "out.jpg"}), 0) << err;
        ASSERT_EQ(ReadWholeFile("out.jpg"), Picture(1500 - count + number));
    }
    const std::string before = ReadWholeFile(path);
    std::filesystem::create_hard_link(path, "alias.jpg");
    EXPECT_EQ(RunTool({"extract", path, "1", "alias.jpg"}), 2);
    EXPECT_EQ(ReadWholeFile(path), before) << "never onto the record file itself";
}

TEST_F(RecordTool, WritesJsonWhateverThePathAndHelpsWhereverItIsAskedTo) {
    EXPECT_EQ(RunTool({"verify", "--help"}), 0);
    EXPECT_NE(out.find("record_file verify"), out.npos);
    // Control characters, and whatever isn't UTF-8.
    EXPECT_EQ(JsonText("a\"b\\c\n\x01 \xE2\x82\xAC \xF0\x9F\x8E\xA5"),
              "\"a\\\"b\\\\c\\u000a\\u0001 \xE2\x82\xAC \xF0\x9F\x8E\xA5\"");
    EXPECT_EQ(JsonText("\xFF\xC3|\xC0\xED\xA0\xE2\x82"),
              R"("\ufffd\ufffd|\ufffd\ufffd\ufffd\ufffd\ufffd")");
}

}  // namespace
}  // namespace marvolen::test
