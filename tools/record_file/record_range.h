#pragma once

// Which records of a file are meant: from one to another, each given by its number or by a time.

#include "record/record_scan.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace marvolen {

// One end of a range: a record's number, or else a time.
struct RecordBound {
    std::optional<std::uint64_t> number;
    SYSTEMTIME time{};  // without a number
};

// Reads a bound: "4711", or "2026/11/23 01:52:22" with or without ".500" for milliseconds. Without
// them the whole second is meant: the first bound of a range begins with it, the last one ends with
// it.
enum class BoundKind { kFirst, kLast };
std::optional<RecordBound> ParseRecordBound(std::string_view text, BoundKind kind);

struct RecordRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;  // included

    std::uint64_t Count() const { return last - first + 1; }
};

// The records of an open file from the first that isn't before a time to the last that isn't after
// one, or from and to a number; without a bound, from the oldest and to the newest. Nothing when a
// number isn't there or the range is empty.
std::optional<RecordRange> FindRecordRange(RecordScan& scan,
                                           const std::optional<RecordBound>& first,
                                           const std::optional<RecordBound>& last);

}  // namespace marvolen
