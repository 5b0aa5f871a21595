#pragma once

// A record file in a folder of its own, with verbs for what happens to one.

#include "net/frame_pool.h"
#include "record/record_file.h"
#include "record/record_verifier.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace marvolen::test {

inline constexpr std::uint64_t kMiB = 1048576;
inline constexpr std::uint64_t kBlock = 19240;

// A record's time and bytes follow from its number alone.
inline SYSTEMTIME StampOf(std::uint32_t id) {
    std::array<std::uint16_t, 8> words;
    for (std::uint16_t& word : words) word = static_cast<std::uint16_t>((id *= 2654435761U) >> 16);
    return std::bit_cast<SYSTEMTIME>(words);
}

inline const std::uint8_t* BytesOf(std::uint32_t id) {
    static const std::vector<std::uint8_t> noise = [] {
        std::vector<std::uint8_t> bytes(kFrameCapacity + 8192);
        std::mt19937 random(1);
        std::generate(bytes.begin(), bytes.end(),
                      [&] { return static_cast<std::uint8_t>(random()); });
        return bytes;
    }();
    return noise.data() + id * 2654435761U % 8192;
}

struct TestRecord {
    std::uint32_t id;
    std::uint32_t length;
};

inline bool Holds(const VideoFrame& frame, const TestRecord& record) {
    return frame.Length() == record.length && frame.Time() != nullptr &&
           *frame.Time() == StampOf(record.id) &&
           std::memcmp(frame.Data(), BytesOf(record.id), record.length) == 0;
}

class RecordFixture : public ::testing::Test {
protected:
    RecordFixture() { EXPECT_TRUE(pool.Init(kFrameCapacity, 2)); }

    bool Create(std::uint64_t maxSize) {
        Renew();
        return file->CreateNew(path, maxSize);
    }
    bool Reopen(std::uint64_t maxSize) {
        Renew();
        return file->OpenAppend(path, maxSize);
    }
    bool Read() {
        Renew();
        return file->OpenForRead(path);
    }
    void Close() { file->CloseWriter(); }
    // The program ends here and now.
    void Crash() { file.reset(); }

    bool AppendRecord(const TestRecord& record) {
        const FramePtr frame = pool.Acquire();
        std::memcpy(frame->Data(), BytesOf(record.id), record.length);
        frame->SetLength(record.length);
        frame->SetTime(StampOf(record.id));
        return file->WriteFrame(*frame);
    }
    bool Append(std::uint32_t length) { return AppendRecord({nextId++, length}); }
    bool AppendMany(int count, std::uint32_t length) {
        while (count-- > 0) {
            if (!Append(length)) return false;
        }
        return true;
    }

    // The current record is the given one.
    bool Shows(std::uint32_t id, std::uint32_t length) {
        const FramePtr frame = pool.Acquire();
        return file->ReadRecord(*frame) && Holds(*frame, {id, length});
    }
    // Reads the file through; whether it holds exactly these records, in order.
    ::testing::AssertionResult HoldsExactly(const std::vector<TestRecord>& records) {
        if (!Read()) return ::testing::AssertionFailure() << "can't be opened";
        const FramePtr frame = pool.Acquire();
        std::size_t k = 0;
        while (k < records.size() && (k == 0 || file->StepForward()) && file->ReadRecord(*frame) &&
               Holds(*frame, records[k])) {
            ++k;
        }
        if (k == records.size() && k == file->RecordCount() && !file->StepForward()) {
            file.reset();
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure()
               << "record " << k << " of " << file->RecordCount() << " and " << records.size();
    }
    // The same for records first..last of one length.
    ::testing::AssertionResult HoldsRange(std::uint32_t first, std::uint32_t last,
                                          std::uint32_t length) {
        std::vector<TestRecord> records;
        for (std::uint32_t id = first; id <= last; ++id) records.push_back({id, length});
        return HoldsExactly(records);
    }

    ::testing::AssertionResult Sound() {
        RecordScan scan;
        if (!scan.Open(path)) return ::testing::AssertionFailure() << "can't be scanned";
        const RecordVerification verification = VerifyRecordFile(scan, RecordPictures::kIgnored);
        if (verification.Sound()) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << verification.findings[0].position << ": " << verification.findings[0].text;
    }

    std::uint64_t Size() const { return std::filesystem::file_size(path); }
    void Cut(std::uint64_t size) { std::filesystem::resize_file(path, size); }

    // Not emptied first: a disk would be made to write every version of the file.
    void Restore(const std::string& bytes) {
        Patch(0, bytes.data(), bytes.size());
        Cut(bytes.size());
    }
    void Patch(std::uint64_t position, const void* bytes, std::size_t length) {
        std::fstream stream(path, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(position));
        stream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(length));
    }
    template <typename T>
    void Patch(std::uint64_t position, T value) {
        Patch(position, &value, sizeof value);
    }
    template <typename T>
    T Peek(std::uint64_t position) {
        T value{};
        std::ifstream stream(path, std::ios::binary);
        stream.seekg(static_cast<std::streamoff>(position));
        EXPECT_TRUE(stream.read(reinterpret_cast<char*>(&value), sizeof value));
        return value;
    }
    RingHeader Header() { return Peek<RingHeader>(0); }
    virtual std::unique_ptr<RecordFile> NewFile() { return std::make_unique<RecordFile>(); }
    void Renew() {
        file.reset();  // before the next one asks for the same file
        file = NewFile();
    }

    const TemporaryFolder folder;
    const std::string path = "channel.dbt";
    FramePool pool;
    std::unique_ptr<RecordFile> file;
    std::uint32_t nextId = 0;
};

}  // namespace marvolen::test
