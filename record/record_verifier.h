#pragma once

// Checks a record file against the invariants of its format (docs/record_format.md lists them by
// number).

#include "record/record_scan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace marvolen {

struct RecordFinding {
    std::uint64_t position;  // in the file
    std::string text;
};

enum class RecordPictures {
    kIgnored,
    kChecked  // every record must begin with FF D8 and end with FF D9
};

struct RecordVerification {
    std::uint64_t chunks = 0;   // reached from the head
    std::uint64_t records = 0;  // in them
    std::vector<RecordFinding> findings;

    bool Sound() const { return findings.empty(); }
};

// Checks the whole of an opened file. Goes on after a finding as far as the chain can be followed.
RecordVerification VerifyRecordFile(RecordScan& scan, RecordPictures pictures);

}  // namespace marvolen
