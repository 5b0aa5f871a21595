#pragma once

// Checks a record file against the invariants of its format (docs/record_format.md lists them by
// number). What breaks one is a finding: the file is damaged. A record that is no picture breaks
// none, since cameras' parts are recorded as they came; it is a note.

#include "record/record_scan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace marvolen {

// What is wrong, or worth a note, and where.
struct RecordFinding {
    std::uint64_t position;  // in the file
    std::string text;
};

// Whether the records' bytes are looked at.
enum class RecordPictures {
    kIgnored,
    kNoted  // there is a note for each record that doesn't begin FF D8 and end FF D9
};

struct RecordVerification {
    std::uint64_t chunks = 0;   // reached from the head
    std::uint64_t records = 0;  // in them
    std::vector<RecordFinding> findings;
    std::vector<RecordFinding> notes;

    bool Sound() const { return findings.empty(); }
};

// Checks the whole of an opened file. Goes on after a finding as far as the chain can be followed.
RecordVerification VerifyRecordFile(RecordScan& scan, RecordPictures pictures);

}  // namespace marvolen
