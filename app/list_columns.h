#pragma once

// The compact text that describes a list's columns: "ID,20;CH,54;Time,115;Message,192".

#include <string>
#include <string_view>
#include <vector>

namespace marvolen {

struct ListColumn {
    std::string name;
    int width = 0;  // device-independent pixels

    bool operator==(const ListColumn&) const = default;
};

// Reads entries of a name and a width, separated by ";", name and width by ",". An entry without
// "," ends the text; a width that isn't a number is 0, and one that is too large for an int counts
// as the largest.
std::vector<ListColumn> ParseColumns(std::string_view text);

}  // namespace marvolen
