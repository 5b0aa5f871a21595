// What the verifier finds, and what record_file prints.

#include "record/record_verifier.h"
#include "tests/record/record_fixture.h"
#include "tools/record_file/json_text.h"
#include "tools/record_file/record_commands.h"

#include <gtest/gtest.h>
#include <sstream>

namespace marvolen::test {
namespace {

class RecordTool : public RecordFixture {
protected:
    // A picture of 100 bytes as far as the verifier looks.
    bool AppendPicture() {
        const FramePtr frame = pool.Acquire();
        std::memset(frame->Data(), static_cast<int>(nextId), 100);
        std::memcpy(frame->Data(), "\xFF\xD8", 2);
        std::memcpy(frame->Data() + 98, "\xFF\xD9", 2);
        frame->SetLength(100);
        frame->SetTime({2004, 2, 0, 29, 8, 15, static_cast<std::uint16_t>(nextId++ % 60), 40});
        return file->WriteFrame(*frame);
    }
    void MakePictures(int count, std::uint64_t maxSize) {
        ASSERT_TRUE(Create(maxSize));
        for (int k = 0; k < count; ++k) ASSERT_TRUE(AppendPicture());
        Close();
    }
    // Does what a line of the transcript says; returns what it prints.
    std::string Do(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        std::uint64_t a = 0;
        std::uint64_t b = 0;
        std::uint64_t c = 0;
        words >> verb >> a >> b >> c;
        if (verb == "pictures") {
            nextId = 0;
            MakePictures(static_cast<int>(a), b);
        } else if (verb == "bytes") {
            EXPECT_TRUE(Reopen(kMiB) && Append(static_cast<std::uint32_t>(a)));
            Close();
        } else if (verb == "patch") {
            Patch(a, &c, b);
        } else if (verb == "cut") {
            Cut(a);
        } else if (verb == "hold") {
            EXPECT_TRUE(Reopen(kMiB));
        } else if (verb == "$") {
            std::vector<std::string> arguments;
            std::istringstream rest(line.substr(1));
            for (std::string word; rest >> word;) arguments.push_back(word);
            const int status = Run(arguments);
            return out + err + "= " + std::to_string(status) + '\n';
        }
        return "";
    }
    int Run(const std::vector<std::string>& arguments) {
        std::ostringstream results;
        std::ostringstream complaints;
        const int status = RunRecordTool(arguments, results, complaints);
        out = results.str();
        err = complaints.str();
        return status;
    }
    std::string out;
    std::string err;
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
    const FramePtr frame = pool.Acquire();
    for (std::uint32_t number = 0; number < 900; number += 7) {
        ASSERT_TRUE(Read() && file->SeekTo(number) && file->ReadRecord(*frame));
        file->CloseReader();
        ASSERT_EQ(Run({"extract", path, std::to_string(number), "out.jpg"}), 0) << err;
        ASSERT_EQ(ReadWholeFile("out.jpg"), std::string(frame->Data(), frame->Data() + 100));
    }
    EXPECT_EQ(Run({"extract", path, "1500", "none.jpg"}), 1);
    EXPECT_EQ(Run({"extract", path, "-1", "none.jpg"}), 2);
    EXPECT_EQ(Run({"extract", path, "1x", "none.jpg"}), 2);
    EXPECT_EQ(Run({"extract", path, "1", "missing/none.jpg"}), 2);
    EXPECT_FALSE(std::filesystem::exists("none.jpg"));
    const std::string before = ReadWholeFile(path);
    std::filesystem::create_hard_link(path, "alias.jpg");
    EXPECT_EQ(Run({"extract", path, "1", "alias.jpg"}), 2);
    EXPECT_EQ(ReadWholeFile(path), before) << "never onto the record file itself";
    MakePictures(5, kMiB);
    for (const std::uint64_t missing : {0U, 1U, 100U}) {
        Cut(24 + kBlock + 500 - missing);
        EXPECT_EQ(Run({"extract", path, "4", "last.jpg"}), missing == 0 ? 0 : 1) << missing;
    }
}

TEST_F(RecordTool, UnderstandsOnlyItsCommands) {
    EXPECT_EQ(Run({"verify", "--help"}), 0);
    EXPECT_NE(out.find("record_file verify"), out.npos);
    // Control characters, and whatever isn't UTF-8.
    EXPECT_EQ(JsonText("a\"b\\c\n\x01 \xE2\x82\xAC \xF0\x9F\x8E\xA5"),
              "\"a\\\"b\\\\c\\u000a\\u0001 \xE2\x82\xAC \xF0\x9F\x8E\xA5\"");
    EXPECT_EQ(JsonText("\xFF\xC3|\xC0\xED\xA0\xE2\x82"),
              R"("\ufffd\ufffd|\ufffd\ufffd\ufffd\ufffd\ufffd")");
    // One chunk fills the ring.
    ASSERT_TRUE(Create(24 + kBlock + 1000) && Append(600) && Append(500) && Append(500));
    Close();
    EXPECT_TRUE(Sound());
    Cut(Size() + 1);
    EXPECT_FALSE(Sound());
}

}  // namespace
}  // namespace marvolen::test
