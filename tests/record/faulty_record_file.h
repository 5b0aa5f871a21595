#pragma once

// A record file on a disk that fails, and a fixture whose files lie there.

#include "record/record_file.h"
#include "tests/record/record_fixture.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace marvolen::test {

// A disk with room for so many more bytes, which notes what is written to it.
class FaultyRecordFile : public RecordFile {
public:
    struct Piece {
        std::uint64_t position;
        std::string bytes;
    };

    bool Write(const void* buf, std::uint32_t n, std::uint32_t* put) override {
        if (stuck) return MovesNothing(put);
        if ((failsHeader && Tell() == 0) || Tell() + n > fullAt) {
            *put = 0;
            return false;
        }
        const auto allowed = static_cast<std::uint32_t>(std::min<std::uint64_t>(n, room));
        const std::uint64_t position = Tell();
        std::uint32_t written = 0;
        const bool taken = RecordFile::Write(buf, allowed, &written);
        // Moving the head writes too, within the call above.
        if (room != kEndless) room -= std::min<std::uint64_t>(room, written);
        if (keepsTrace && written > 0) {
            trace.push_back({position, {static_cast<const char*>(buf), written}});
        }
        *put = written;
        // The turn at the ring's end may have come before the end of the room.
        return taken && (allowed == n || written < allowed);
    }

    bool Read(void* buf, std::uint32_t n, std::uint32_t* got) override {
        ++reads;
        if (readsBeforeFailure > 0 && --readsBeforeFailure == 0) return false;
        return stuck ? MovesNothing(got) : RecordFile::Read(buf, n, got);
    }

    bool Seek(std::uint64_t pos) override { return pos != failsSeekTo && RecordFile::Seek(pos); }

    static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t room = kEndless;
    bool stuck = false;
    bool failsHeader = false;
    std::uint64_t fullAt = kEndless;  // no byte is taken from this position on
    std::uint64_t failsSeekTo = kEndless;
    int reads = 0;
    int readsBeforeFailure = 0;  // 0: reading never fails
    bool keepsTrace = false;
    std::vector<Piece> trace;

private:
    static bool MovesNothing(std::uint32_t* moved) {
        *moved = 0;
        return true;
    }
};

class RecordFaults : public RecordFixture {
protected:
    std::unique_ptr<RecordFile> NewFile() override {
        auto made = std::make_unique<FaultyRecordFile>();
        disk = made.get();
        return made;
    }
    // The file holds taken but for its oldest ones and at most so many of the newest.
    void ExpectSurvivorsOf(std::vector<TestRecord> taken, std::size_t mostLost) {
        if (!Read()) {  // the newest chunk was the only one, and never flushed
            ASSERT_GT(mostLost, 0U);
            return;
        }
        const std::uint32_t count = file->RecordCount();
        ASSERT_TRUE(file->SeekTo(count - 1));
        std::size_t lost = 0;
        while (!taken.empty() && !Shows(taken.back().id, taken.back().length)) {
            taken.pop_back();
            ++lost;
        }
        ASSERT_LE(lost, mostLost);
        ASSERT_LE(count, taken.size());
        taken.erase(taken.begin(), taken.end() - count);
        ASSERT_TRUE(HoldsExactly(taken));
    }

    FaultyRecordFile* disk = nullptr;
};

}  // namespace marvolen::test
