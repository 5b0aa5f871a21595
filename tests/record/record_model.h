#pragma once

// What a record file holds after any sequence of appends, closes, crashes and changes of maximum,
// worked out without a file: positions are laid out along a line that never turns, where a chunk is
// lost as soon as writing gets one ring's size past its start.

#include "record/record_format.h"
#include "tests/record/record_fixture.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace marvolen::test {

class RecordModel {
public:
    void Create(std::uint64_t newMax) {
        max = newMax;
        pos = 24;
        line = 0;
        fileSize = 0;
        chunks.clear();
        BeginChunk();
    }

    bool Append(const TestRecord& record) {
        if (record.length > RingSize() - kBlock) return false;
        if (chunks.back().records.size() == 600) {
            chunks.back().flushed = 600;
            BeginChunk();
        } else if (record.length > Room()) {
            chunks.clear();
            BeginChunk();
        }
        Advance(record.length);
        chunks.back().records.push_back(record);
        return true;
    }

    void Close() { chunks.back().flushed = chunks.back().records.size(); }

    // After Close or Crash. False: nothing can be kept.
    bool Reopen(std::uint64_t newMax) {
        const std::uint64_t turn = std::min(fileSize, max);
        std::uint64_t used = kBlock;
        for (const TestRecord& record : chunks.back().records) used += record.length;
        const std::uint64_t self = chunks.back().self;
        pos = used <= turn - self ? self + used : 24 + used - (turn - self);
        if (newMax < turn && !KeepBelow(newMax)) return false;
        if (newMax > turn) fileSize = std::min(fileSize, turn);
        max = newMax;
        LayOut();
        return true;
    }

    std::vector<TestRecord> Records() const {
        std::vector<TestRecord> all;
        for (const Chunk& chunk : chunks) {
            all.insert(all.end(), chunk.records.begin(), chunk.records.end());
        }
        return all;
    }

    // Bytes before the maximum, and before the newest chunk's own block.
    std::uint64_t ToMaximum() const { return max - pos; }
    std::uint64_t Room() const {
        return static_cast<std::uint64_t>(chunks.back().start + Ring() - line);
    }
    std::uint64_t Position() const { return pos; }
    std::uint64_t Max() const { return max; }
    std::size_t Chunks() const { return chunks.size(); }
    std::uint64_t FileSize() const { return fileSize; }
    std::uint64_t ChunkPosition(std::size_t k) const { return chunks[k].self; }

private:
    struct Chunk {
        std::uint64_t self;
        std::int64_t start;  // on the line
        std::size_t flushed = 0;
        std::vector<TestRecord> records{};
    };

    std::uint64_t RingSize() const { return max - 24; }
    std::int64_t Ring() const { return static_cast<std::int64_t>(RingSize()); }

    void BeginChunk() {
        chunks.push_back({pos, line});
        Advance(kBlock);
    }

    void Advance(std::uint64_t n) {
        line += static_cast<std::int64_t>(n);
        while (chunks.front().start + Ring() < line) chunks.pop_front();
        if (n > max - pos) {
            fileSize = max;
            pos = 24 + n - (max - pos);
        } else {
            pos += n;
            fileSize = std::max(fileSize, pos);
        }
    }

    bool KeepBelow(std::uint64_t newMax) {
        std::deque<Chunk> kept;
        std::uint64_t keptEnd = 0;
        for (std::uint64_t end = pos; !chunks.empty();
             end = chunks.back().self, chunks.pop_back()) {
            if (chunks.back().self < end && end <= newMax) {
                if (kept.empty()) keptEnd = end;
                kept.push_front(chunks.back());
            } else if (!kept.empty()) {
                break;
            }
        }
        chunks = kept;
        pos = keptEnd;
        return !chunks.empty();
    }

    void LayOut() {
        line = static_cast<std::int64_t>(pos) - 24;
        std::int64_t lap = 0;
        std::uint64_t following = pos;
        for (std::size_t k = chunks.size(); k-- > 0;) {
            const std::uint64_t place = chunks[k].self == max ? 24 : chunks[k].self;
            if (place >= following) lap -= Ring();
            chunks[k].start = static_cast<std::int64_t>(place) - 24 + lap;
            following = place;
        }
    }

    std::uint64_t max = 0;
    std::uint64_t pos = 0;
    std::int64_t line = 0;
    std::uint64_t fileSize = 0;
    std::deque<Chunk> chunks;
};

}  // namespace marvolen::test
