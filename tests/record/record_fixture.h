#pragma once

// A record file in a folder of its own, with verbs for what happens to one.

#include "net/frame_pool.h"
#include "record/record_verifier.h"
#include "tests/record/faulty_record_file.h"
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
struct TestRecord {
    std::uint32_t id;
    std::uint32_t length;

    SYSTEMTIME Stamp() const {
        std::array<std::uint16_t, 8> words;
        std::uint32_t seed = id;
        for (auto& word : words) word = static_cast<std::uint16_t>((seed *= 2654435761U) >> 16);
        return std::bit_cast<SYSTEMTIME>(words);
    }
    const std::uint8_t* Bytes() const {
        static const std::vector<std::uint8_t> noise = [] {
            std::vector<std::uint8_t> bytes(kFrameCapacity + 8192);
            std::generate(bytes.begin(), bytes.end(),
                          std::independent_bits_engine<std::mt19937, 8, std::uint32_t>());
            return bytes;
        }();
        return noise.data() + id * 2654435761U % 8192;
    }
};

class RecordFixture : public ::testing::Test {
protected:
    RecordFixture() { EXPECT_TRUE(pool.Init(kFrameCapacity, 1)); }

    void Renew() {
        file.reset();  // before the next one asks for the same file
        file = std::make_unique<FaultyRecordFile>();
    }
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

    bool AppendFrame(const void* bytes, std::uint32_t length, const SYSTEMTIME& stamp) {
        const FramePtr frame = pool.Acquire();
        std::memcpy(frame->Data(), bytes, length);
        frame->SetLength(length);
        frame->SetTime(stamp);
        return file->WriteFrame(*frame);
    }
    bool AppendRecord(const TestRecord& record) {
        return AppendFrame(record.Bytes(), record.length, record.Stamp());
    }
    bool Append(std::uint32_t length) { return AppendRecord({nextId++, length}); }
    bool AppendMany(int count, std::uint32_t length) {
        while (count > 0 && Append(length)) --count;
        return count == 0;
    }

    // The current record is the given one.
    bool Shows(const TestRecord& record) {
        const FramePtr frame = pool.Acquire();
        return file->ReadRecord(*frame) && frame->Length() == record.length &&
               *frame->Time() == record.Stamp() &&
               std::memcmp(frame->Data(), record.Bytes(), record.length) == 0;
    }
    // Reads the file through; whether it holds exactly these records, in order. One without records
    // can't be opened.
    ::testing::AssertionResult HoldsExactly(const std::vector<TestRecord>& records) {
        if (!Read()) return ::testing::AssertionResult(records.empty()) << "can't be opened";
        std::size_t k = 0;
        while (k < records.size() && (k == 0 || file->StepForward()) && Shows(records[k])) ++k;
        const std::uint32_t count = file->RecordCount();
        const bool all = k == records.size() && k == count && !file->StepForward();
        file.reset();
        return ::testing::AssertionResult(all)
               << "record " << k << " of " << count << " and " << records.size();
    }
    // The same for records first..last of one length.
    ::testing::AssertionResult HoldsRange(std::uint32_t first, std::uint32_t last,
                                          std::uint32_t length) {
        std::vector<TestRecord> records;
        for (std::uint32_t id = first; id <= last; ++id) records.push_back({id, length});
        return HoldsExactly(records);
    }
    // The file holds taken but for its oldest ones and at most so many of the newest.
    void ExpectSurvivorsOf(std::vector<TestRecord> taken, std::size_t mostLost) {
        if (!Read()) {  // the newest chunk was the only one, and never flushed
            ASSERT_GT(mostLost, 0U);
            return;
        }
        const std::uint32_t count = file->RecordCount();
        const std::size_t before = taken.size();
        ASSERT_TRUE(file->SeekTo(count - 1));
        while (!taken.empty() && !Shows(taken.back())) taken.pop_back();
        ASSERT_LE(before - taken.size(), mostLost);
        ASSERT_LE(count, taken.size());
        taken.erase(taken.begin(), taken.end() - count);
        ASSERT_TRUE(HoldsExactly(taken));
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

    const TemporaryFolder folder;
    const std::string path = "channel.dbt";
    FramePool pool;
    std::unique_ptr<FaultyRecordFile> file;
    std::uint32_t nextId = 0;
};

}  // namespace marvolen::test
