#include "playback/avi_writer.h"

#include <algorithm>
#include <cstdio>

namespace marvolen {
namespace {

constexpr std::size_t kBufferSize = 256 * 1024;
constexpr std::uint64_t kRoomAhead = 8 * 1048576;

// Samples that are shown within a second.
constexpr std::size_t kSamplesPerSecond = (kAviRate + kAviScale - 1) / kAviScale;
static_assert(kSamplesPerSecond == 30);

bool WriteTo(FileHandle& file, const void* bytes, std::size_t count) {
    std::uint32_t put = 0;
    return file.Write(bytes, static_cast<std::uint32_t>(count), put);
}

}  // namespace

bool AviWriter::Create(const std::string& path, std::int32_t width, std::int32_t height) {
    Close();
    if (!file.Create(path)) return false;
    header = AviHeader();
    header.main.dwWidth = header.video.format.biWidth = width;
    header.main.dwHeight = header.video.format.biHeight = height;
    index.clear();
    buffer.reserve(kBufferSize);
    position = sizeof header;
    reserved = 0;
    full = damaged = false;
    if (MakeRoom(position + IndexSize()) && WriteTo(file, &header, sizeof header)) return true;
    // Removed while it is still ours.
    std::remove(path.c_str());
    file.Close();
    return false;
}

bool AviWriter::WriteSample(std::span<const std::uint8_t> picture, std::string_view text) {
    if (!IsOpen() || full) return false;
    const std::uint64_t end = position + ChunkSize(picture.size()) + ChunkSize(text.size() + 1);
    if (!MakeRoom(end + IndexSize() + kAviStreams * sizeof(AviIndexEntry))) {
        full = true;
        return false;
    }
    AppendChunk(kAviVideoChunk, picture, false);
    AppendChunk(kAviTextChunk, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()},
                true);
    return !full;
}

bool AviWriter::Close() {
    if (!IsOpen()) return false;
    Flush();
    const bool indexed = WriteIndex();
    // Without an index the file ends behind the last sample; players go through it instead.
    if (!indexed) file.Seek(position);
    const bool cut = file.Truncate();
    header.riff.size = static_cast<std::uint32_t>(file.Tell() - sizeof(AviChunk));
    header.main.dwFlags = AVIF_ISINTERLEAVED | (indexed ? AVIF_HASINDEX : 0);
    const bool described = WriteHeader();
    file.Close();
    return indexed && cut && described && !damaged;
}

// Room up to end, and more than that while there is more.
bool AviWriter::MakeRoom(std::uint64_t end) {
    if (end > kAviMaxFileBytes) return false;
    if (end <= reserved) return true;
    for (const std::uint64_t wanted : {end + kRoomAhead, end}) {
        if (!file.Reserve(wanted)) continue;
        reserved = wanted;
        return true;
    }
    return false;
}

void AviWriter::AppendChunk(std::uint32_t id, std::span<const std::uint8_t> data, bool nul) {
    constexpr std::uint8_t kZeros[] = {0, 0};
    const AviChunk chunk{id, static_cast<std::uint32_t>(data.size() + (nul ? 1 : 0))};
    if (full) return;
    index.push_back(
        {id, AVIIF_KEYFRAME, static_cast<std::uint32_t>(position - kAviIndexOrigin), chunk.size});
    position += ChunkSize(chunk.size);
    Append(&chunk, sizeof chunk);
    Append(data.data(), data.size());
    Append(kZeros, static_cast<std::size_t>(ChunkSize(chunk.size)) - sizeof chunk - data.size());
}

void AviWriter::Append(const void* bytes, std::size_t count) {
    const auto* source = static_cast<const std::uint8_t*>(bytes);
    while (count > 0 && !full) {
        const std::size_t piece = std::min(count, kBufferSize - buffer.size());
        buffer.insert(buffer.end(), source, source + piece);
        source += piece;
        count -= piece;
        if (buffer.size() == kBufferSize) Flush();
    }
}

void AviWriter::Flush() {
    if (!WriteTo(file, buffer.data(), buffer.size())) DropSamplesBehind(file.Tell());
    buffer.clear();
}

// The disk didn't keep what was promised: the file ends with the last sample that is whole.
void AviWriter::DropSamplesBehind(std::uint64_t end) {
    const auto endOf = [](const AviIndexEntry& entry) {
        return kAviIndexOrigin + entry.position + ChunkSize(entry.size);
    };
    if (index.size() % kAviStreams != 0) index.pop_back();
    while (!index.empty() && endOf(index.back()) > end) index.resize(index.size() - kAviStreams);
    position = index.empty() ? sizeof header : endOf(index.back());
    file.Seek(position);
    full = damaged = true;
}

bool AviWriter::WriteIndex() {
    const AviChunk chunk{kAviIndexChunk,
                         static_cast<std::uint32_t>(index.size() * sizeof(AviIndexEntry))};
    return WriteTo(file, &chunk, sizeof chunk) && WriteTo(file, index.data(), chunk.size);
}

bool AviWriter::WriteHeader() {
    DescribeStream(header.video.header, kAviVideoChunk);
    DescribeStream(header.text.header, kAviTextChunk);
    header.main.dwTotalFrames = Samples();
    header.main.dwSuggestedBufferSize =
        static_cast<std::uint32_t>(std::max(ChunkSize(header.video.header.dwSuggestedBufferSize),
                                            ChunkSize(header.text.header.dwSuggestedBufferSize)));
    header.main.dwMaxBytesPerSec = MaxBytesPerSecond();
    header.movi.size = static_cast<std::uint32_t>(position - kAviIndexOrigin);
    return file.Seek(0) && WriteTo(file, &header, sizeof header);
}

void AviWriter::DescribeStream(AviStreamHeader& stream, std::uint32_t id) const {
    stream.dwLength = Samples();
    for (const AviIndexEntry& entry : index) {
        if (entry.id != id) continue;
        stream.dwSuggestedBufferSize = std::max(stream.dwSuggestedBufferSize, entry.size);
    }
}

std::uint32_t AviWriter::MaxBytesPerSecond() const {
    const std::uint64_t end = position - kAviIndexOrigin;
    std::uint64_t most = 0;
    for (std::size_t from = 0; from < index.size(); from += kAviStreams) {
        const std::size_t to = from + kSamplesPerSecond * kAviStreams;
        most =
            std::max(most, (to < index.size() ? index[to].position : end) - index[from].position);
    }
    return static_cast<std::uint32_t>(most);
}

}  // namespace marvolen
