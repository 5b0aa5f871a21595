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
    int Run(const std::vector<std::string>& arguments) {
        std::ostringstream results;
        std::ostringstream complaints;
        const int status = RunRecordTool(arguments, results, complaints);
        out = results.str();
        err = complaints.str();
        return status;
    }
    // The findings of verify, a line each.
    std::string Findings() {
        const int status = Run({"verify", path});
        const std::size_t verdict = out.find(path + ": ");
        EXPECT_EQ(status, verdict == 0 ? 0 : 1);
        return out.substr(0, verdict);
    }

    std::string out;
    std::string err;
};

TEST_F(RecordTool, InfoTellsWhatIsInTheFile) {
    MakePictures(605, kMiB);
    EXPECT_EQ(Run({"info", path}), 0);
    EXPECT_EQ(out,
              "File     channel.dbt\nSize     99004 bytes\nMaximum  1048576 bytes\nHead     24\n"
              "Chunks   2\nRecords  605\nFirst    2004/02/29 08:15:00.040\n"
              "Last     2004/02/29 08:15:04.040\nIn use   98980 of 1048552 bytes (9.4 %)\n");
    EXPECT_EQ(Run({"info", path, "--json"}), 0);
    EXPECT_EQ(out, R"({"file": "channel.dbt", "size": 99004, "maxSize": 1048576, "head": 24, )"
                   R"("chunks": 2, "records": 605, "firstStamp": "2004/02/29 08:15:00.040", )"
                   R"("lastStamp": "2004/02/29 08:15:04.040", "ringBytes": 1048552, )"
                   R"("usedBytes": 98980, "whole": true})"
                   "\n");
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

TEST_F(RecordTool, SaysWhyAFileCannotBeHad) {
    EXPECT_EQ(Run({"info", "none.dbt"}), 2);
    EXPECT_EQ(err, "none.dbt: no such file\n");
    EXPECT_EQ(Run({"info", "."}), 2);
    EXPECT_EQ(err, ".: not a file\n");
    ASSERT_TRUE(Create(100000));
    for (const char* command : {"info", "list", "verify"}) {
        EXPECT_EQ(Run({command, path}), 2);
        EXPECT_EQ(err, "channel.dbt: in use by a recorder or another program\n");
    }
    WriteWholeFile("foreign", std::string(30000, 'x'));
    EXPECT_EQ(Run({"list", "foreign"}), 1);
    EXPECT_EQ(Run({"verify", "foreign"}), 1);
    EXPECT_EQ(out,
              "0: not a record file: no RING header\nforeign: damaged, 0 chunks, 0 records, 1 "
              "finding\n");
}

TEST_F(RecordTool, UnderstandsOnlyItsCommands) {
    EXPECT_EQ(Run({"verify", "--help"}), 0);
    EXPECT_NE(out.find("record_file verify"), out.npos);
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{},
                                                  {"info"},
                                                  {"look", "a"},
                                                  {"list", "--xml", "a"},
                                                  {"extract", "a", "1"},
                                                  {"extract", "--json", "a", "1", "b"}}) {
        EXPECT_EQ(Run(wrong), 2);
        EXPECT_TRUE(out.empty() && !err.empty());
    }
    // Control characters, and whatever isn't UTF-8.
    EXPECT_EQ(JsonText("a\"b\\c\n\x01 \xE2\x82\xAC \xF0\x9F\x8E\xA5"),
              "\"a\\\"b\\\\c\\u000a\\u0001 \xE2\x82\xAC \xF0\x9F\x8E\xA5\"");
    EXPECT_EQ(JsonText("\xFF\xC3|\xC0\xED\xA0\xE2\x82"),
              R"("\ufffd\ufffd|\ufffd\ufffd\ufffd\ufffd\ufffd")");
}

TEST_F(RecordTool, VerifyNamesTheFieldThatIsWrong) {
    const std::uint64_t second = 24 + kBlock + 60000;
    struct Case {
        std::uint64_t position;
        std::uint64_t value;
        int width;
        const char* line;
    };
    for (const Case& damage : std::initializer_list<Case>{
             {0, 0, 4, "0: not a record file: no RING header\n"},
             {8, 20, 8, "8: head 20 is not in a file of 98604\n"},
             {16, 19263, 8, "16: maximum 19263 is too small for an index block\n"},
             {24, 0, 4, "24: no index block here\n"},
             {24 + 8, 25, 8, "32: index block at 24 says it lies at 25\n"},
             {24 + 16, 24, 8,
              "40: next chunk is at 24, the records end at 79264\n24: a link leads "
              "back here\n"},
             {24 + 16, second + 1, 8,
              "40: next chunk is at 79265, the records end at 79264\n79265: no index block here\n"},
             {second + 24, 25, 8, "79288: previous chunk is 24, not 25\n"},
             {24 + 32, 599, 4,
              "56: 599 entries in a chunk of 600\n40: next chunk is at 79264, the records end at "
              "79164\n"},
             {second + 32, 601, 4, "79296: 601 entries in a chunk of 600\n"},
             {24 + 40 + 32, 5, 8, "96: record 1 begins at 5 instead of 19364\n"},
             {second + 48, 200, 8, "79312: record 600 of 200 bytes isn't whole in the file\n"},
             {24 + 40 + 10 * 32 + 8, 1ULL << 40, 8,
              "392: record 10 of 1099511627776 bytes isn't whole in the file\n"},
         }) {
        MakePictures(601, kMiB);
        ASSERT_EQ(Findings(), "");
        Patch(damage.position, &damage.value, static_cast<std::size_t>(damage.width));
        EXPECT_EQ(Findings().find(damage.line), 0U) << damage.position;
    }
    MakePictures(601, kMiB);
    Cut(second + 100);
    EXPECT_EQ(Findings(), "79264: no room for an index block\n");
}

TEST_F(RecordTool, VerifyNotesRecordsThatAreNoPictures) {
    ASSERT_TRUE(Create(kMiB) && AppendPicture() && Append(3) && Append(200) && AppendPicture());
    Close();
    EXPECT_EQ(Run({"verify", path}), 0);
    EXPECT_EQ(out,
              "19364: note: record 1 is no picture\n19367: note: record 2 is no picture\n"
              "channel.dbt: sound, 1 chunk, 4 records, 2 notes\n");
    EXPECT_EQ(Run({"verify", "--json", path}), 0);
    EXPECT_EQ(out, R"({"file": "channel.dbt", "sound": true, "chunks": 1, "records": 4, )"
                   R"("findings": [], "notes": [)"
                   "\n"
                   R"({"position": 19364, "text": "record 1 is no picture"},)"
                   "\n"
                   R"({"position": 19367, "text": "record 2 is no picture"}]})"
                   "\n");
}

TEST_F(RecordTool, VerifyWantsAWrappedRingCut) {
    ASSERT_TRUE(Create(24 + kBlock + 1000) && Append(600) && Append(500) && Append(500));
    Close();
    ASSERT_TRUE(Sound());
    Cut(Size() + 1);
    EXPECT_FALSE(Sound()) << "one chunk fills it";
    MakePictures(1400, 24 + 2 * kBlock + 60000);
    ASSERT_NE(Header().head, 24U);
    ASSERT_EQ(Findings(), "");
    Cut(Size() + 1);
    EXPECT_EQ(Findings(),
              "98504: file of 98505 bytes goes on behind the place where its ring turns\n");
}

TEST_F(RecordTool, ListHasALineForEachRecordAsFarAsTheChainGoes) {
    MakePictures(1300, kMiB);
    EXPECT_EQ(Run({"list", "--json", path}), 0);
    EXPECT_NE(out.find(R"({"number": 600, "stamp": "2004/02/29 08:15:00.040", "length": 100, )"
                       R"("position": 98504},)"),
              out.npos);
    EXPECT_TRUE(out.ends_with("], \"whole\": true}\n"));
    Patch(24 + 2 * (kBlock + 60000), std::uint32_t{0});
    EXPECT_EQ(Run({"list", path}), 1);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1201);
    EXPECT_NE(out.find("\n     601  2004/02/29 08:15:01.040       100           98604\n"),
              out.npos);
    EXPECT_NE(err.find("damaged"), err.npos);
    EXPECT_EQ(Run({"info", "--json", path}), 1);
    EXPECT_NE(out.find(R"("records": 1200,)"), out.npos);
}

}  // namespace
}  // namespace marvolen::test
