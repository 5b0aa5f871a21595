#include "tools/record_file/export_command.h"

#include "jpeg/picture_size.h"
#include "net/frame_pool.h"
#include "platform/native_path.h"
#include "playback/avi_renderer.h"
#include "tools/record_file/plain_text.h"
#include "tools/record_file/record_commands.h"
#include "tools/record_file/record_cursor.h"
#include "tools/record_file/record_range.h"
#include "tools/record_file/stop_request.h"

#include <limits>
#include <optional>
#include <ostream>

namespace marvolen {
namespace {

struct ExportOptions {
    std::string file;
    std::string output;
    std::optional<RecordBound> first;
    std::optional<RecordBound> last;
    bool quiet = false;
};

// What goes wrong in the arguments; empty when nothing does.
std::string Understand(const std::vector<std::string>& arguments, ExportOptions& options) {
    std::vector<std::string> operands;
    for (std::size_t k = 0; k < arguments.size(); ++k) {
        const std::string& argument = arguments[k];
        if (argument == "--quiet") {
            options.quiet = true;
        } else if (argument == "--first" || argument == "--last") {
            const bool isFirst = argument == "--first";
            std::optional<RecordBound>& bound = isFirst ? options.first : options.last;
            if (++k == arguments.size()) return argument + " wants a number or a time";
            bound = ParseRecordBound(arguments[k], isFirst ? BoundKind::kFirst : BoundKind::kLast);
            if (!bound) return arguments[k] + ": neither a record number nor a time";
        } else if (argument.starts_with("--")) {
            return argument + ": no such option";
        } else {
            operands.push_back(argument);
        }
    }
    if (operands.size() != 2) return "export wants FILE and OUT.avi";
    options.file = operands[0];
    options.output = operands[1];
    return {};
}

// Shows the renderer the records of a range; a position is a record's number.
class RecordExport final : public RenderHost {
public:
    RecordExport(RecordScan& openScan, const RecordRange& chosen,
                 const ExportOptions& chosenOptions, std::ostream& complaints,
                 ProgressBar progressBar)
        : scan(openScan),
          range(chosen),
          options(chosenOptions),
          err(complaints),
          bar(progressBar),
          cursor(openScan),
          spare(kFrameCapacity) {
        frame.data.resize(kFrameCapacity);
    }

    std::string OutputName() override { return options.output; }
    PlaybackSelection Selection() override {
        return {static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last)};
    }
    void EnableControls(bool) override {}
    const CapturedFrame& Show(std::int32_t position) override;
    bool GoesOn(const RenderReport& report) override;
    void Complain(const char* text) override { err << options.output << ": " << text << '\n'; }

    // Records that couldn't be read.
    std::uint64_t Unreadable() const { return unreadable; }
    // Whether a signal ended it early.
    bool WasStopped() const { return stop.IsRequested() && shown < range.Count(); }
    void ClearBar() {
        if (percent >= 0) err << "\r\x1b[K" << std::flush;
    }

private:
    bool ReadRecord(std::uint64_t number);
    void DrawBar();

    RecordScan& scan;
    const RecordRange range;
    const ExportOptions& options;
    std::ostream& err;
    const ProgressBar bar;
    const StopRequest stop;
    RecordCursor cursor;
    PictureSizeReader sizes;
    CapturedFrame frame;
    std::vector<std::uint8_t> spare;  // takes the next picture, as large as frame's
    std::uint64_t shown = 0;
    std::uint64_t unreadable = 0;
    int percent = -1;
};

const CapturedFrame& RecordExport::Show(std::int32_t position) {
    if (!ReadRecord(static_cast<std::uint64_t>(position))) ++unreadable;
    ++shown;
    return frame;
}

// Leaves the frame as it was where a player would: the picture before is then written once more.
bool RecordExport::ReadRecord(std::uint64_t number) {
    do {
        if (!cursor.Next()) return false;
    } while (cursor.Number() < number);
    const IndexEntry& record = cursor.Entry();
    if (record.length > kFrameCapacity || !cursor.IsWhole()) return false;
    const auto length = static_cast<std::uint32_t>(record.length);
    if (!scan.ReadAt(record.pos, spare.data(), length)) return false;
    frame.data.swap(spare);
    frame.length = length;
    FormatTimeInto(record.stamp, frame.timeText);
    int width = -1;
    int height = -1;
    sizes.Read(frame.data.data(), length, width, height);
    frame.width = width;
    frame.height = height;
    return true;
}

// There is no use in going on with a disk that is full: nobody watches the pictures.
bool RecordExport::GoesOn(const RenderReport& report) {
    if (bar == ProgressBar::kDrawn && !options.quiet) DrawBar();
    return !report.writeFailed && !stop.IsRequested();
}

void RecordExport::DrawBar() {
    constexpr int kWidth = 40;
    const int now = static_cast<int>(shown * 100 / range.Count());
    if (now == percent) return;
    percent = now;
    const auto done = static_cast<std::size_t>(now * kWidth / 100);
    err << "\r[" << std::string(done, '#') << std::string(kWidth - done, ' ') << "] " << now << " %"
        << std::flush;
}

class ExportCommand {
public:
    ExportCommand(const ExportOptions& chosen, std::ostream& results, std::ostream& complaints)
        : options(chosen), out(results), err(complaints) {}

    int Run(ProgressBar bar);

private:
    int Fail(int status, const std::string& file, const std::string& what) {
        err << file << ": " << what << '\n';
        return status;
    }
    int Tell(const RecordExport& records, const RenderReport& report);

    const ExportOptions& options;
    std::ostream& out;
    std::ostream& err;
};

int ExportCommand::Run(ProgressBar bar) {
    RecordScan scan;
    if (!scan.Open(MapDrivePath(options.file))) {
        return Fail(kRecordToolFailed, options.file, OpenErrorText(scan.OpenError()));
    }
    if (!scan.IsRing()) {
        return Fail(kRecordToolDamaged, options.file, "not a record file, or damaged");
    }
    const std::optional<RecordRange> range = FindRecordRange(scan, options.first, options.last);
    if (!range || range->last > std::numeric_limits<std::int32_t>::max()) {
        return Fail(kRecordToolDamaged, options.file, "no such records");
    }
    // The hold on FILE keeps OUT.avi from being FILE.
    if (IsRecordFile(MapDrivePath(options.output))) {
        return Fail(kRecordToolFailed, options.output, "a record file; not replaced");
    }
    RecordExport records(scan, *range, options, err, bar);
    AviRenderer renderer(records);
    renderer.Render();
    records.ClearBar();
    return Tell(records, renderer.Report());
}

int ExportCommand::Tell(const RecordExport& records, const RenderReport& report) {
    if (!options.quiet) {
        for (const RenderedFile& file : report.files) {
            out << file.path << ": " << CountedText(file.samples, "picture") << '\n';
        }
        if (report.skipped > 0) {
            err << options.file << ": left out " << CountedText(report.skipped, "record")
                << " that can't be decoded\n";
        }
    }
    if (report.createFailed) return kRecordToolFailed;
    if (report.writeFailed) {
        return Fail(kRecordToolFailed, report.files.back().path, "the disk takes no more");
    }
    if (records.WasStopped()) return Fail(kRecordToolFailed, options.file, "stopped");
    if (records.Unreadable() > 0) {
        return Fail(kRecordToolDamaged, options.file,
                    CountedText(records.Unreadable(), "record") +
                        " can't be read; the picture before stands in their place");
    }
    return kRecordToolDone;
}

}  // namespace

int RunExportCommand(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& err, ProgressBar bar) {
    ExportOptions options;
    const std::string mistake = Understand(arguments, options);
    if (mistake.empty()) return ExportCommand(options, out, err).Run(bar);
    err << "record_file: " << mistake << "; try record_file --help\n";
    return kRecordToolFailed;
}

}  // namespace marvolen
