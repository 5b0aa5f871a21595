#include "app/column_text.h"

#include <gtest/gtest.h>
#include <limits>

namespace marvolen {
namespace {

using Columns = std::vector<ColumnText>;

TEST(ColumnText, ReadsNamesAndWidths) {
    EXPECT_EQ(ParseColumns("ID,20;CH,54;Time,115;Message,192"),
              (Columns{{"ID", 20}, {"CH", 54}, {"Time", 115}, {"Message", 192}}));
    EXPECT_EQ(ParseColumns("ID,20;"), (Columns{{"ID", 20}}));
    EXPECT_EQ(ParseColumns(",5"), (Columns{{"", 5}}));
}

TEST(ColumnText, ANameRunsToItsCommaAndAWidthToItsSemicolon) {
    EXPECT_EQ(ParseColumns("A;B,10"), (Columns{{"A;B", 10}}));
    EXPECT_EQ(ParseColumns("A,10,20;B,30"), (Columns{{"A", 10}, {"B", 30}}));
    EXPECT_EQ(ParseColumns(";,1"), (Columns{{";", 1}}));
}

TEST(ColumnText, WidthsAreTheirLeadingDigits) {
    EXPECT_EQ(
        ParseColumns("A,12px;B,wide;C,;D,-4;E,99999999999999999999"),
        (Columns{{"A", 12}, {"B", 0}, {"C", 0}, {"D", 0}, {"E", std::numeric_limits<int>::max()}}));
}

}  // namespace
}  // namespace marvolen
