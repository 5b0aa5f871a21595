#pragma once

// AviRenderer: writes a selection of a recording to AVI files (docs/avi_export.md).
//
// It goes through the selection position by position, has its host show each one, and writes the
// picture that was then captured, its bytes as they were recorded. A file ends when the size of the
// pictures changes and when it has more than splitBytes of them; the next one's name is numbered.
// Pictures without a size couldn't be decoded and are left out. Other files of the same names are
// replaced, but not recordings.
//
// The host is the dialog, or whatever else has records to show: one renderer, so that the same
// records give the same bytes. Runs to its end on the thread that calls it.

#include "playback/avi_writer.h"
#include "playback/frame_capture.h"
#include "playback/playback_positions.h"

#include <cstdint>
#include <string>
#include <vector>

namespace marvolen {

inline constexpr std::uint32_t kAviSplitBytes = 1020 * 1048576;  // of pictures, in one file
static_assert(kAviSplitBytes == 1069547520);

struct RenderedFile {
    std::string path;  // native
    std::uint32_t samples = 0;
};

// What a render has done so far.
struct RenderReport {
    std::vector<RenderedFile> files;  // in order; the last one may still be open
    std::uint32_t skipped = 0;        // pictures left out for want of a size
    bool writeFailed = false;   // something isn't in the files that should be: the disk is full
    bool createFailed = false;  // a file couldn't be created, which ended the render
};

// Whom a renderer works for. The operations are called in this order: OutputName, EnableControls,
// Selection, then Show and GoesOn for each position, Complain at most once, EnableControls.
class RenderHost {
public:
    virtual ~RenderHost() = default;

    // Where to write to: a native path, or one with a drive letter.
    virtual std::string OutputName() = 0;

    // The positions to write, both ends included.
    virtual PlaybackSelection Selection() = 0;

    // False before the first position is shown, true after the last file is closed.
    virtual void EnableControls(bool flag) = 0;

    // Shows what stands at a position and returns the picture shown last: where nothing new can be
    // shown, the one before. Borrowed until the next call.
    virtual const CapturedFrame& Show(std::int32_t position) = 0;

    // After each position: the time to show how far the render is. False ends it; what was written
    // is then closed as at the selection's end.
    virtual bool GoesOn(const RenderReport& report) = 0;

    // Tells the user that a file can't be created.
    virtual void Complain(const char* text) = 0;
};

class AviRenderer {
public:
    // host is borrowed and must outlive the renderer. Another split size is for tests.
    explicit AviRenderer(RenderHost& servedHost, std::uint32_t bytesBeforeSplit = kAviSplitBytes)
        : splitBytes(bytesBeforeSplit), host(servedHost) {}
    virtual ~AviRenderer() = default;
    AviRenderer(const AviRenderer&) = delete;
    AviRenderer& operator=(const AviRenderer&) = delete;

    // Writes the host's selection. A selection whose start lies beyond its end writes no file. When
    // a file can't be created the host complains and the render ends; files completed before
    // remain. A sample that the disk doesn't take is left out, and the render goes on.
    void Render();

    // For a program that ends from within a call to the host, and never returns to Render: closes
    // the file being written with the samples it has.
    void Abandon() { CloseAvi(); }

    // Of the latest render.
    const RenderReport& Report() const { return report; }

private:
    void RenderSelection();
    bool Write(const CapturedFrame& frame);
    bool OpenAvi(std::int32_t width, std::int32_t height);
    void WriteAviFrame(const CapturedFrame& frame);
    void NextFile();
    void CloseAvi();

    std::string outputName;  // the file being written
    std::string baseName;    // as the host gave it
    std::int32_t aviWidth = 0;
    std::int32_t aviHeight = 0;
    bool aviOpen = false;
    AviWriter aviFile;
    const std::uint32_t splitBytes;
    std::uint32_t bytesWritten = 0;  // of pictures, to the file being written
    std::uint32_t fileSequence = 0;  // of the last split file, in all renders
    RenderHost& host;
    RenderReport report;
};

}  // namespace marvolen
