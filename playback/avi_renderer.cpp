#include "playback/avi_renderer.h"

#include "platform/native_path.h"
#include "playback/split_name.h"
#include "record/record_scan.h"

namespace marvolen {

void AviRenderer::Render() {
    report = RenderReport();
    baseName = host.OutputName();
    outputName = baseName;
    host.EnableControls(false);
    RenderSelection();
    CloseAvi();
    host.EnableControls(true);
}

void AviRenderer::RenderSelection() {
    const PlaybackSelection selection = host.Selection();
    // Wider than a position, so that the last one there can be isn't followed by the first.
    for (std::int64_t k = selection.start; k <= selection.end; ++k) {
        if (!Write(host.Show(static_cast<std::int32_t>(k))) || !host.GoesOn(report)) return;
    }
}

// False when the file for it can't be created.
bool AviRenderer::Write(const CapturedFrame& frame) {
    if (frame.width < 0 || frame.height < 0) {
        ++report.skipped;
        return true;
    }
    if (aviOpen && (frame.width != aviWidth || frame.height != aviHeight)) NextFile();
    if (!aviOpen && !OpenAvi(frame.width, frame.height)) {
        report.createFailed = true;
        host.Complain("Error Creating AVI");
        return false;
    }
    WriteAviFrame(frame);
    if (bytesWritten > splitBytes) NextFile();
    return true;
}

bool AviRenderer::OpenAvi(std::int32_t width, std::int32_t height) {
    std::string path = NativePath(outputName);
    // In place of a recording: a mistake that would cost it.
    if (IsRecordFile(path) || !aviFile.Create(path, width, height)) return false;
    report.files.push_back({std::move(path), 0});
    bytesWritten = 0;
    aviOpen = true;
    aviWidth = width;
    aviHeight = height;
    return true;
}

void AviRenderer::WriteAviFrame(const CapturedFrame& frame) {
    if (!aviFile.WriteSample({frame.data.data(), frame.length}, frame.timeText)) {
        report.writeFailed = true;
        return;
    }
    report.files.back().samples = aviFile.Samples();
    bytesWritten += frame.length;
}

void AviRenderer::NextFile() {
    outputName = SplitName(baseName, ++fileSequence);
    CloseAvi();
}

void AviRenderer::CloseAvi() {
    if (!aviOpen) return;
    if (!aviFile.Close()) report.writeFailed = true;
    // Fewer than were taken, if the disk lost some.
    report.files.back().samples = aviFile.Samples();
    aviOpen = false;
}

}  // namespace marvolen
