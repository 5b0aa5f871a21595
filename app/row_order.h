#pragma once

// How a sortable list orders its rows by one column.
//
// The first text of a pair decides how the pair is compared: as decimal numbers, as day/month/year
// dates, or as texts of the system's locale. That isn't an ordering in the mathematical sense when
// a column mixes the three ("9", "9a", "10"), so rows are sorted by a merge of our own, which ends
// with some order of all rows whatever the comparison says. Pure functions; any thread.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

// A text of the sorted column, prepared for many comparisons.
class SortText {
public:
    // The text is borrowed.
    explicit SortText(std::string_view columnText);

    // -1, 0 or 1 as this text comes before, with or after other.
    int Compare(const SortText& other) const;

private:
    enum class Kind { Number, Date, Text };

    Kind kind;
    std::string_view digits;  // the digits the text begins with, without leading zeros
    std::string_view text;
    std::string collationKey;  // orders as the locale does, byte by byte
};

// The order of the rows, as indexes into texts, sorted stably by these texts of theirs. Descending
// makes the same comparisons with each pair exchanged.
std::vector<std::size_t> SortedOrder(std::span<const SortText> texts, bool ascending);

}  // namespace marvolen
