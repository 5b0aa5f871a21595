#pragma once

// AviWriter: writes one AVI file of pictures and their times (docs/avi_export.md).
//
//   Create, WriteSample any number of times, Close
//
// A sample is a picture with its time; both go to the file, as the samples of the same number of
// the two streams, or neither does. The file grows ahead of what is written, so that there is
// always room for the index of what it holds. A disk that takes no more therefore costs the
// samples that come after, never the file: it refuses them, and Close makes of the others a file
// like any other.
//
// Nothing waits but for the disk, and nothing throws but for want of memory. Used by one thread at
// a time. Paths are native. The file is held exclusively while it is open.

#include "platform/file_handle.h"
#include "playback/avi_format.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

class AviWriter {
public:
    AviWriter() = default;
    // Closes.
    ~AviWriter() { Close(); }
    AviWriter(const AviWriter&) = delete;
    AviWriter& operator=(const AviWriter&) = delete;

    // A new AVI file, in place of whatever file was there, for pictures of this size in pixels.
    // Closes an open one first. False when the file can't be had (a file in use keeps its bytes) or
    // the disk has no room for the header; then there is no file.
    bool Create(const std::string& path, std::int32_t width, std::int32_t height);

    // Adds a sample; text gets a NUL behind it. False when no file is open, the disk is full, or
    // the file would outgrow kAviMaxFileBytes: then the sample isn't in the file, and it takes no
    // more of them.
    bool WriteSample(std::span<const std::uint8_t> picture, std::string_view text);

    // Writes index and header and ends the hold. False when no file was open, or when the disk
    // refused something that had been taken: the samples it holds are then whole and those before
    // the first that failed, and it may lack the index.
    bool Close();

    bool IsOpen() const { return file.IsOpen(); }

    // Samples in the file that is open, or was last.
    std::uint32_t Samples() const { return static_cast<std::uint32_t>(index.size() / kAviStreams); }

private:
    static std::uint64_t ChunkSize(std::uint64_t dataSize) {
        return sizeof(AviChunk) + dataSize + dataSize % 2;
    }
    std::uint64_t IndexSize() const {
        return sizeof(AviChunk) + index.size() * sizeof(AviIndexEntry);
    }

    bool MakeRoom(std::uint64_t end);
    void AppendChunk(std::uint32_t id, std::span<const std::uint8_t> data, bool nul);
    void Append(const void* bytes, std::size_t count);
    void Flush();
    void DropSamplesBehind(std::uint64_t end);
    void DescribeStream(AviStreamHeader& stream, std::uint32_t id) const;
    std::uint32_t MaxBytesPerSecond() const;
    bool WriteIndex();
    bool WriteHeader();

    FileHandle file;
    AviHeader header;
    std::vector<AviIndexEntry> index;  // of the samples taken, as in the file
    std::vector<std::uint8_t> buffer;  // their last bytes, which are not in the file yet
    std::uint64_t position = 0;        // behind the last sample
    std::uint64_t reserved = 0;        // the file has its place on the disk up to here
    bool full = false;                 // a sample was refused
    bool damaged = false;              // a sample was lost that had been taken
};

}  // namespace marvolen
