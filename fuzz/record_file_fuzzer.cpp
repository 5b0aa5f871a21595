// Record files with damaged fields: whatever they say, reading and reopening them ends, stays
// within the ring, and what is appended afterwards is read back.
//
// An input chooses a sound file, changes some of its fields or cuts it, and then a maximum to
// reopen it with and the lengths of frames to append.

#include "net/frame_pool.h"
#include "record/record_file.h"
#include "record/record_verifier.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace marvolen;

constexpr std::uint64_t kBlock = kChunkBlockSize;

void Require(bool holds) {
    if (!holds) std::abort();
}

// A file in memory that can be opened by name, as often as it is closed.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("record", MFD_CLOEXEC)) {
        Require(descriptor >= 0);
        path = "/proc/self/fd/" + std::to_string(descriptor);
    }
    void Set(const std::string& bytes) const {
        Require(ftruncate(descriptor, 0) == 0);
        Require(pwrite(descriptor, bytes.data(), bytes.size(), 0) ==
                static_cast<ssize_t>(bytes.size()));
    }
    std::string Get() const {
        std::string bytes(Size(), '\0');
        Require(pread(descriptor, bytes.data(), bytes.size(), 0) ==
                static_cast<ssize_t>(bytes.size()));
        return bytes;
    }
    std::size_t Size() const { return static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)); }
    const std::string& Path() const { return path; }

private:
    int descriptor;
    std::string path;
};

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}
    bool Empty() const { return next == end; }
    template <typename T>
    T Take() {
        T value{};
        const auto n = std::min<std::size_t>(sizeof value, static_cast<std::size_t>(end - next));
        std::memcpy(&value, next, n);
        next += n;
        return value;
    }

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

struct Harness {
    Harness() {
        Require(pool.Init(kFrameCapacity, 1));
        Add(1 << 20, 605, 3);                   // two chunks
        Add(24 + 3 * (kBlock + 700), 3300, 1);  // wrapped, across the end
        Add(24 + 3 * (kBlock + 600), 2100, 1);  // a chunk at the ring's very end
        Add(24 + kBlock + 3000, 40, 200);       // less than a chunk
        Add(24 + 5 * kBlock + 100, 3700, 0);    // empty records
    }

    void Add(std::uint64_t maxSize, int records, std::uint32_t length) {
        RecordFile writer;
        Require(writer.CreateNew(file.Path(), maxSize));
        for (int k = 0; k < records; ++k) Require(Append(writer, length, 1));
        writer.CloseWriter();
        bases.push_back(file.Get());
    }

    bool Append(RecordFile& writer, std::uint32_t length, std::uint8_t mark) {
        const FramePtr frame = pool.Acquire();
        std::memset(frame->Data(), mark, length);
        frame->SetLength(length);
        frame->SetTime({2004, 2, 0, 29, 8, 15, 0, mark});
        return writer.WriteFrame(*frame);
    }

    void Read(Input& input) {
        RecordFile reader;
        if (!reader.OpenForRead(file.Path())) return;
        const std::uint32_t count = reader.RecordCount();
        const FramePtr frame = pool.Acquire();
        const auto chosen = input.Take<std::uint16_t>();
        for (const std::uint32_t index : {std::uint32_t{chosen}, count - 1, 600U, 599U, 0U}) {
            if (!reader.SeekTo(index)) continue;
            reader.ReadRecord(*frame);
            if (reader.StepBack()) reader.ReadRecord(*frame);
            if (reader.StepForward() && reader.StepForward()) reader.ReadRecord(*frame);
        }
        // A walk through everything ends, even where links are damaged.
        for (std::uint32_t k = 0; k < 5000 && reader.StepForward(); ++k) reader.ReadRecord(*frame);
        reader.CloseReader();
    }

    void Verify(bool mustBeSound) {
        RecordScan scan;
        Require(scan.Open(file.Path()));
        Require(VerifyRecordFile(scan, RecordPictures::kNoted).findings.size() < 100000);
        Require(!mustBeSound || VerifyRecordFile(scan, RecordPictures::kIgnored).Sound());
    }

    FramePool pool;
    MemoryFile file;
    std::vector<std::string> bases;
};

// Applies one change to the file's bytes.
void Damage(std::string& bytes, Input& input) {
    const auto kind = input.Take<std::uint8_t>();
    const auto where = input.Take<std::uint16_t>();
    auto value = input.Take<std::uint64_t>();
    if (bytes.size() < kSmallestRing) return;
    // Values near what a file holds are the interesting ones.
    if (kind & 0x80)
        value = bytes.size() + static_cast<std::uint64_t>(static_cast<std::int8_t>(value));
    if (kind & 0x40) value = kRingDataStart + (value & 7) * kBlock + ((value >> 3) & 0xFFF);

    std::vector<std::size_t> blocks;
    for (std::size_t at = bytes.find("CHUN"); at != bytes.npos; at = bytes.find("CHUN", at + 1)) {
        blocks.push_back(at);
    }
    const std::size_t block = blocks.empty() ? 24 : blocks[where % blocks.size()];
    static constexpr std::array<std::size_t, 5> kFields = {8, 16, 24, 32, 0};
    std::size_t position = 0;
    switch (kind & 7) {
        case 0:
            position = 8;
            break;
        case 1:
            position = 16;
            break;
        case 2:
        case 3:
            position = block + kFields[where / 8 % kFields.size()];
            break;
        case 4:
            position = block + 40 + where / 8 % 1200 * 16;
            break;  // any pos or stamp
        case 5:
            position = block + 48 + where / 8 % 600 * 32;
            break;  // any length
        case 6:
            position = value % bytes.size();
            break;
        default:
            bytes.resize(value % bytes.size());
            return;
    }
    const std::size_t width = position == block + 32 ? 4 : (kind & 7) == 6 ? 1 : 8;
    if (position + width <= bytes.size()) std::memcpy(bytes.data() + position, &value, width);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Harness harness;
    Input input(data, size);
    const auto choice = input.Take<std::uint8_t>();
    const std::string& base = harness.bases[choice % harness.bases.size()];
    std::string bytes = base;
    for (int k = choice / 8 % 8; k > 0; --k) Damage(bytes, input);
    const bool sound = bytes == base;
    harness.file.Set(bytes);
    harness.Read(input);
    harness.Verify(sound);
    Require(harness.file.Get() == bytes);

    const auto maxChoice = input.Take<std::uint8_t>();
    const std::uint64_t maxSize = maxChoice < 64 ? kSmallestRing + maxChoice * std::uint64_t{2048}
                                                 : bytes.size() + maxChoice - 160;
    RecordFile writer;
    if (!writer.OpenAppend(harness.file.Path(), maxSize)) return 0;
    bool written = false;
    std::uint32_t last = 0;
    std::uint8_t mark = 0;
    while (!input.Empty()) {
        const auto step = input.Take<std::uint16_t>();
        const std::uint32_t length = step < 60000 ? step % 128 : step - 50000U;
        for (int repeat = step % 7 == 0 ? 600 : 1; repeat > 0; --repeat) {
            if (!harness.Append(writer, length, ++mark)) continue;
            written = true;
            last = length | std::uint32_t{mark} << 24;
        }
    }
    writer.CloseWriter();
    Require(harness.file.Size() <= std::max<std::uint64_t>(maxSize, bytes.size()));
    harness.Verify(sound);
    Require(writer.OpenAppend(harness.file.Path(), maxSize));
    writer.CloseWriter();
    if (!written || !writer.OpenForRead(harness.file.Path())) return 0;
    const FramePtr frame = harness.pool.Acquire();
    Require(writer.SeekTo(writer.RecordCount() - 1) && writer.ReadRecord(*frame));
    Require(frame->Length() == (last & 0xFFFFFF) && frame->Time()->milliseconds == last >> 24);
    Require(frame->Length() == 0 || frame->Data()[frame->Length() - 1] == last >> 24);
    writer.CloseReader();
    return 0;
}
