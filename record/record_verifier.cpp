#include "record/record_verifier.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace marvolen {
namespace {

std::string Text(std::uint64_t number) {
    return std::to_string(number);
}

// One pass over a file. The numbers are those of the invariants.
class Verifier {
public:
    Verifier(RecordScan& scanned, RecordPictures pictureCheck)
        : scan(scanned), ring(scanned.Ring()), pictures(pictureCheck) {}

    RecordVerification Run() {
        if (CheckHeader()) CheckChain();
        return std::move(result);
    }

private:
    void Find(std::uint64_t position, std::string text) {
        result.findings.push_back({position, std::move(text)});
    }

    // Invariant 1.
    bool CheckHeader() {
        const RingHeader& header = scan.Header();
        if (header.magic != kRingMagic || scan.FileSize() < sizeof header) {
            Find(0, "not a record file: no RING header");
        } else if (header.maxSize < kSmallestRing) {
            Find(offsetof(RingHeader, maxSize),
                 "maximum " + Text(header.maxSize) + " is too small for an index block");
        } else if (!scan.IsRing()) {
            Find(offsetof(RingHeader, head),
                 "head " + Text(header.head) + " is not in a file of " + Text(scan.FileSize()));
        }
        return scan.IsRing() && result.findings.empty();
    }

    void CheckChain() {
        std::uint64_t position = 0;
        std::uint64_t previous = 0;
        ChunkBlock block;
        scan.Rewind();
        for (;;) {
            const RecordScan::Step step = scan.Next(position, block);
            if (step == RecordScan::Step::kEnd) break;
            if (step == RecordScan::Step::kBroken) {
                Find(position, scan.Why());  // invariants 2 and 3
                return;
            }
            CheckChunk(position, previous, block);
            previous = position;
        }
        CheckTurn(block.header, position);
    }

    void CheckChunk(std::uint64_t position, std::uint64_t previous, const ChunkBlock& block) {
        const ChunkHeader& header = block.header;
        const bool newest = header.next == 0;
        if (header.self != position) {  // invariant 2
            Find(Field(position, offsetof(ChunkHeader, self)),
                 "index block at " + Text(position) + " says it lies at " + Text(header.self));
        }
        if (result.chunks > 0 && header.prev != previous) {  // invariant 4
            Find(Field(position, offsetof(ChunkHeader, prev)),
                 "previous chunk is " + Text(previous) + ", not " + Text(header.prev));
        }
        // One that isn't full leads nowhere: it is the newest.
        if (header.count > kChunkEntries) {
            Find(Field(position, offsetof(ChunkHeader, count)),  // invariant 5
                 Text(header.count) + " entries in a chunk of " + Text(kChunkEntries));
        }
        ++result.chunks;
        CheckEntries(position, block);
        if (!newest && endKnown && ring.Holds(header.next) &&
            ring.Place(header.next) != ring.Place(end)) {
            Find(Field(position, offsetof(ChunkHeader, next)),  // invariant 6
                 "next chunk is at " + Text(header.next) + ", the records end at " + Text(end));
        }
    }

    // Invariants 6 and 7. Leaves the end of the chunk's data in end.
    void CheckEntries(std::uint64_t position, const ChunkBlock& block) {
        const std::uint64_t chunkOffset = ring.Distance(scan.Header().head, position);
        std::uint64_t used = kChunkBlockSize;
        end = ring.Advance(position, used);
        endKnown = true;
        const std::uint32_t count = std::min(block.header.count, kChunkEntries);
        for (std::uint32_t k = 0; k < count; ++k) {
            const IndexEntry& entry = block.entries[k];
            const std::uint64_t at =
                Field(position, sizeof(ChunkHeader) + std::uint64_t{k} * sizeof(IndexEntry));
            if (entry.pos == 0) {
                Find(at, "no entry for record " + Text(result.records));
                endKnown = false;
                return;
            }
            const std::string record = "record " + Text(result.records++);
            if (!ring.Holds(entry.pos) || ring.Place(entry.pos) != ring.Place(end)) {
                Find(at, record + " begins at " + Text(entry.pos) + " instead of " + Text(end));
            }
            if (entry.length > ring.Size() - chunkOffset - used) {
                Find(at + offsetof(IndexEntry, length),
                     record + " of " + Text(entry.length) + " bytes isn't whole in the file");
                // Where the ones behind it should be is not known.
                endKnown = false;
                result.records += count - (k + 1);
                return;
            }
            // Where it should be, so that one bad position is one finding.
            if (pictures == RecordPictures::kNoted) LookAtPicture(record, end, entry.length);
            used += entry.length;
            end = ring.Advance(position, used);
        }
    }

    // As they came: no invariant.
    void LookAtPicture(const std::string& record, std::uint64_t position, std::uint64_t length) {
        std::array<std::uint8_t, 4> marks{};
        if (length >= marks.size() &&
            (!scan.ReadAt(position, marks.data(), 2) ||
             !scan.ReadAt(ring.Advance(position, length - 2), marks.data() + 2, 2))) {
            Find(position, record + " can't be read");
        } else if (marks != std::array<std::uint8_t, 4>{0xFF, 0xD8, 0xFF, 0xD9}) {
            result.notes.push_back({position, record + " is no picture"});
        }
    }

    // Invariant 8: a ring that turns at its maximum isn't longer than that.
    void CheckTurn(const ChunkHeader& newest, std::uint64_t position) {
        const std::uint64_t head = ring.Place(scan.Header().head);
        const std::uint64_t used =
            ring.Distance(head, position) + ring.DistanceBehind(position, end);
        if (newest.next == 0 && head + used > ring.End() && scan.FileSize() > ring.End()) {
            Find(ring.End(), "file of " + Text(scan.FileSize()) +
                                 " bytes goes on behind the place where its ring turns");
        }
    }

    // Where a field of the index block at position lies.
    std::uint64_t Field(std::uint64_t position, std::uint64_t offset) const {
        return ring.Place(ring.Advance(position, offset));
    }

    RecordScan& scan;
    const RingGeometry& ring;
    const RecordPictures pictures;
    std::uint64_t end = 0;  // of the latest chunk's data
    bool endKnown = false;
    RecordVerification result;
};

}  // namespace

RecordVerification VerifyRecordFile(RecordScan& scan, RecordPictures pictures) {
    return Verifier(scan, pictures).Run();
}

}  // namespace marvolen
