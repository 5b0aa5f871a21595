#include "app/column_text.h"

#include <gtest/gtest.h>
#include <limits>

namespace marvolen {
namespace {

TEST(ColumnText, NamesRunToTheirCommaAndWidthsAreTheirLeadingDigits) {
    constexpr int kMost = std::numeric_limits<int>::max();
    using Columns = std::vector<ColumnText>;
    const std::pair<const char*, Columns> texts[] = {
        {"ID,20;CH,54", {{"ID", 20}, {"CH", 54}}},
        {"ID,20;", {{"ID", 20}}},
        {"A,10;B", {{"A", 10}}},
        {";,1", {{";", 1}}},
        {",5", {{"", 5}}},
        {"A,10,20;B,30", {{"A", 10}, {"B", 30}}},
        {"A,12px;B,w;C,;D,-4", {{"A", 12}, {"B", 0}, {"C", 0}, {"D", 0}}},
        {"A,99999999999999999999", {{"A", kMost}}}};
    for (const auto& [text, columns] : texts) EXPECT_EQ(ParseColumns(text), columns) << text;
}

}  // namespace
}  // namespace marvolen
