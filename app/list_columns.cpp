#include "app/list_columns.h"

#include "app/decimal.h"

#include <algorithm>
#include <limits>

namespace marvolen {

std::vector<ListColumn> ParseColumns(std::string_view text) {
    std::vector<ListColumn> columns;
    for (;;) {
        const std::size_t comma = text.find(',');
        if (comma == std::string_view::npos) return columns;
        const std::string_view name = text.substr(0, comma);
        text.remove_prefix(comma + 1);
        const std::size_t end = std::min(text.find(';'), text.size());
        const std::uint64_t width = LeadingDecimal(text.substr(0, end));
        constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
        columns.push_back({std::string(name), static_cast<int>(std::min(width, kMost))});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

}  // namespace marvolen
