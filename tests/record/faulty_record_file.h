#pragma once

// A record file on a disk that fails on request, and notes what is written to it.

#include "record/record_file.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace marvolen::test {

class FaultyRecordFile : public RecordFile {
public:
    struct Piece {
        std::uint64_t position;
        std::string bytes;
    };

    bool Write(const void* buf, std::uint32_t n, std::uint32_t* put) override {
        *put = 0;
        if (stuck || (failsHeader && Tell() == 0)) return stuck;
        const auto allowed = static_cast<std::uint32_t>(std::min<std::uint64_t>(n, room));
        const std::uint64_t position = Tell();
        const bool taken = RecordFile::Write(buf, allowed, put);
        // Moving the head writes too, within the call above.
        if (room != kEndless) room -= std::min<std::uint64_t>(room, *put);
        if (keepsTrace && *put > 0) {
            trace.push_back({position, {static_cast<const char*>(buf), *put}});
        }
        // The turn at the ring's end may have come before the end of the room.
        return taken && (allowed == n || *put < allowed);
    }

    bool Read(void* buf, std::uint32_t n, std::uint32_t* got) override {
        ++reads;
        *got = 0;
        if (readsBeforeFailure > 0 && --readsBeforeFailure == 0) return false;
        return stuck || RecordFile::Read(buf, n, got);
    }

    bool Seek(std::uint64_t pos) override { return pos != failsSeekTo && RecordFile::Seek(pos); }

    static constexpr std::uint64_t kEndless = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t room = kEndless;  // for so many more bytes
    bool stuck = false;             // moves nothing, and calls it a success
    bool failsHeader = false;       // the ring's
    std::uint64_t failsSeekTo = kEndless;
    int reads = 0;
    int readsBeforeFailure = 0;  // 0: reading never fails
    bool keepsTrace = false;
    std::vector<Piece> trace;
};

}  // namespace marvolen::test
