#include "tools/record_file/record_commands.h"

#include "platform/native_path.h"
#include "record/record_verifier.h"
#include "tools/record_file/json_text.h"
#include "tools/record_file/plain_text.h"
#include "tools/record_file/record_cursor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <iomanip>
#include <ostream>

namespace marvolen {
namespace {

constexpr const char* kHelp =
    R"(record_file - looks into Marvolen's record files

  record_file info [--json] FILE            size, chunks, records, first and last stamp
  record_file list [--json] FILE            number, stamp, length and position of every record
  record_file extract FILE NUMBER OUT.jpg   writes a record's picture; 0 is the oldest record
  record_file verify [--json] FILE          checks everything; each finding, and each note of a
                                            record that is no picture, is a line that begins
                                            with its position in the file
  record_file export FILE OUT.avi [--first A] [--last B] [--quiet]
                                            writes the records A to B, both included, to an AVI
                                            file and lists the files it took: more than one where
                                            the pictures' size changes, or for more than 1020 MiB
  record_file --help                        this text

A and B are numbers as list shows them, or times such as "2026/11/23 01:52:22": the first record that
isn't before A, the last that isn't after B. Without them everything is written.

Files are opened read-only and never changed. A file that is being recorded or played back can't be
looked into; while it is looked into, it can be neither: a channel opened during a long verify
doesn't open, nor record, until Marvolen tries it again. A path such as c:\chl01.dbt means what it
means to Marvolen.

Exit status: 0 done, and for verify the file is sound; 1 the file is damaged, is no record file or
has no such record; 2 wrong usage, a file that can't be opened or written, or an export that was
stopped.
)";

struct Invocation {
    std::string command;
    bool json = false;
    std::vector<std::string> operands;
};

struct RecordSummary {
    std::uint64_t chunks = 0;
    std::uint64_t records = 0;
    std::string first;  // stamps; empty without records
    std::string last;
    std::uint64_t usedBytes = 0;
    bool whole = false;  // the chain could be followed to its end
};

std::string StampText(const SYSTEMTIME& stamp) {
    std::array<char, 8> milliseconds;
    std::snprintf(milliseconds.data(), milliseconds.size(), ".%.3u", unsigned{stamp.milliseconds});
    return FormatTime(stamp) + milliseconds.data();
}

class RecordTool {
public:
    RecordTool(const Invocation& called, std::ostream& results, std::ostream& complaints)
        : invocation(called), path(called.operands[0]), out(results), err(complaints) {}

    int Run() {
        if (!scan.Open(MapDrivePath(path))) {
            return Fail(kRecordToolFailed, OpenErrorText(scan.OpenError()));
        }
        if (invocation.command == "verify") return Verify();
        if (!scan.IsRing()) return Fail(kRecordToolDamaged, "not a record file, or damaged");
        if (invocation.command == "info") return Info();
        if (invocation.command == "list") return List();
        return Extract();
    }

private:
    int Fail(int status, const std::string& what) {
        err << path << ": " << what << '\n';
        return status;
    }

    int ChainStatus(bool whole) {
        return whole ? kRecordToolDone
                     : Fail(kRecordToolDamaged, "damaged: there may be more records; see verify");
    }

    RecordSummary Summarise();
    int Info();
    int List();
    int Extract();
    int Verify();
    void PutJson(const std::vector<RecordFinding>& findings);

    const Invocation& invocation;
    const std::string& path;
    std::ostream& out;
    std::ostream& err;
    RecordScan scan;
};

// Bytes from the head to the end of a chunk's last record.
std::uint64_t UsedBytes(const RecordScan& scan, std::uint64_t position, const ChunkBlock& block) {
    const RingGeometry& ring = scan.Ring();
    std::uint64_t used = ring.Distance(scan.Header().head, position) + kChunkBlockSize;
    const std::uint32_t count = std::min(block.header.count, kChunkEntries);
    for (std::uint32_t k = 0; k < count; ++k) {
        if (block.entries[k].length > ring.Size() - used) break;
        used += block.entries[k].length;
    }
    return used;
}

RecordSummary RecordTool::Summarise() {
    RecordSummary summary;
    std::uint64_t position = 0;
    ChunkBlock block;
    scan.Rewind();
    for (;;) {
        const RecordScan::Step step = scan.Next(position, block);
        if (step != RecordScan::Step::kChunk) {
            summary.whole = step == RecordScan::Step::kEnd;
            return summary;
        }
        const std::uint32_t count = std::min(block.header.count, kChunkEntries);
        if (count > 0) {
            if (summary.records == 0) summary.first = StampText(block.entries[0].stamp);
            summary.last = StampText(block.entries[count - 1].stamp);
        }
        ++summary.chunks;
        summary.records += count;
        summary.usedBytes = UsedBytes(scan, position, block);
    }
}

int RecordTool::Info() {
    const RecordSummary summary = Summarise();
    const std::uint64_t room = scan.Header().maxSize - kRingDataStart;
    if (invocation.json) {
        const auto stamp = [](const std::string& text) {
            return text.empty() ? std::string("null") : JsonText(text);
        };
        out << "{\"file\": " << JsonText(path) << ", \"size\": " << scan.FileSize()
            << ", \"maxSize\": " << scan.Header().maxSize << ", \"head\": " << scan.Header().head
            << ", \"chunks\": " << summary.chunks << ", \"records\": " << summary.records
            << ", \"firstStamp\": " << stamp(summary.first)
            << ", \"lastStamp\": " << stamp(summary.last) << ", \"ringBytes\": " << room
            << ", \"usedBytes\": " << summary.usedBytes
            << ", \"whole\": " << (summary.whole ? "true" : "false") << "}\n";
    } else {
        const double percent =
            100.0 * static_cast<double>(summary.usedBytes) / static_cast<double>(room);
        out << "File     " << path << '\n'
            << "Size     " << scan.FileSize() << " bytes\n"
            << "Maximum  " << scan.Header().maxSize << " bytes\n"
            << "Head     " << scan.Header().head << '\n'
            << "Chunks   " << summary.chunks << '\n'
            << "Records  " << summary.records << '\n'
            << "First    " << summary.first << '\n'
            << "Last     " << summary.last << '\n'
            << "In use   " << summary.usedBytes << " of " << room << " bytes (" << std::fixed
            << std::setprecision(1) << percent << " %)\n";
    }
    return ChainStatus(summary.whole);
}

int RecordTool::List() {
    if (invocation.json) {
        out << "{\"file\": " << JsonText(path) << ", \"records\": [";
    } else {
        out << "  Number  Stamp                      Length        Position\n";
    }
    RecordCursor record(scan);
    while (record.Next()) {
        const std::string stamp = StampText(record.Entry().stamp);
        if (invocation.json) {
            out << (record.Number() == 0 ? "\n" : ",\n") << "{\"number\": " << record.Number()
                << ", \"stamp\": " << JsonText(stamp) << ", \"length\": " << record.Entry().length
                << ", \"position\": " << record.Entry().pos << '}';
        } else {
            out << std::setw(8) << record.Number() << "  " << stamp << std::setw(10)
                << record.Entry().length << std::setw(16) << record.Entry().pos << '\n';
        }
    }
    const bool whole = record.ChainIsWhole();
    if (invocation.json) out << "], \"whole\": " << (whole ? "true" : "false") << "}\n";
    return ChainStatus(whole);
}

int RecordTool::Extract() {
    const std::string& digits = invocation.operands[1];
    std::uint64_t number = 0;
    const auto [stop, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || stop != digits.data() + digits.size()) {
        err << digits << ": not a record number\n";
        return kRecordToolFailed;
    }
    RecordCursor record(scan);
    do {
        if (!record.Next()) return Fail(kRecordToolDamaged, "no record " + digits);
    } while (record.Number() < number);
    if (!record.IsWhole()) {
        return Fail(kRecordToolDamaged, "record " + digits + " isn't whole in the file");
    }
    const IndexEntry& found = record.Entry();

    // The hold on the record file keeps this from being the same file under another name.
    const std::string& target = invocation.operands[2];
    FileHandle picture;
    if (!picture.Create(MapDrivePath(target))) {
        err << target << ": " << OpenErrorText(picture.OpenError()) << '\n';
        return kRecordToolFailed;
    }
    std::array<std::uint8_t, 65536> piece;
    for (std::uint64_t done = 0; done < found.length;) {
        const auto n =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(piece.size(), found.length - done));
        if (!scan.ReadAt(scan.Ring().Advance(found.pos, done), piece.data(), n)) {
            return Fail(kRecordToolDamaged, "record " + digits + " can't be read");
        }
        std::uint32_t put = 0;
        if (!picture.Write(piece.data(), n, put)) {
            err << target << ": can't be written\n";
            return kRecordToolFailed;
        }
        done += n;
    }
    return kRecordToolDone;
}

void RecordTool::PutJson(const std::vector<RecordFinding>& findings) {
    const char* separator = "[\n";
    for (const RecordFinding& finding : findings) {
        out << separator << "{\"position\": " << finding.position
            << ", \"text\": " << JsonText(finding.text) << '}';
        separator = ",\n";
    }
    out << (findings.empty() ? "[]" : "]");
}

int RecordTool::Verify() {
    const RecordVerification result = VerifyRecordFile(scan, RecordPictures::kNoted);
    if (invocation.json) {
        out << "{\"file\": " << JsonText(path)
            << ", \"sound\": " << (result.Sound() ? "true" : "false")
            << ", \"chunks\": " << result.chunks << ", \"records\": " << result.records
            << ", \"findings\": ";
        PutJson(result.findings);
        out << ", \"notes\": ";
        PutJson(result.notes);
        out << "}\n";
    } else {
        for (const RecordFinding& finding : result.findings) {
            out << finding.position << ": " << finding.text << '\n';
        }
        for (const RecordFinding& note : result.notes) {
            out << note.position << ": note: " << note.text << '\n';
        }
        out << path << ": " << (result.Sound() ? "sound" : "damaged") << ", "
            << CountedText(result.chunks, "chunk") << ", " << CountedText(result.records, "record");
        if (!result.Sound()) out << ", " << CountedText(result.findings.size(), "finding");
        if (!result.notes.empty()) out << ", " << CountedText(result.notes.size(), "note");
        out << '\n';
    }
    return result.Sound() ? kRecordToolDone : kRecordToolDamaged;
}

bool Understand(const std::vector<std::string>& arguments, Invocation& invocation) {
    if (arguments.empty()) return false;
    invocation.command = arguments[0];
    for (std::size_t k = 1; k < arguments.size(); ++k) {
        if (arguments[k] == "--json") {
            invocation.json = true;
        } else if (arguments[k].starts_with("--")) {
            return false;
        } else {
            invocation.operands.push_back(arguments[k]);
        }
    }
    if (invocation.command == "extract") {
        return !invocation.json && invocation.operands.size() == 3;
    }
    return invocation.operands.size() == 1 &&
           (invocation.command == "info" || invocation.command == "list" ||
            invocation.command == "verify");
}

}  // namespace

int RunRecordTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
                  ProgressBar bar) {
    if (std::find(arguments.begin(), arguments.end(), "--help") != arguments.end()) {
        out << kHelp;
        return kRecordToolDone;
    }
    if (!arguments.empty() && arguments[0] == "export") {
        return RunExportCommand({arguments.begin() + 1, arguments.end()}, out, err, bar);
    }
    Invocation invocation;
    if (!Understand(arguments, invocation)) {
        err << "record_file: don't understand; try record_file --help\n";
        return kRecordToolFailed;
    }
    return RecordTool(invocation, out, err).Run();
}

}  // namespace marvolen
