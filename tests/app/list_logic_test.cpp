// The plain logic of sortable lists.

#include "app/list_columns.h"
#include "app/row_order.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace marvolen {
namespace {

using Texts = std::vector<std::string>;

int Compare(std::string_view a, std::string_view b) {
    return SortText(a).Compare(SortText(b));
}

Texts Sorted(const Texts& texts, bool ascending) {
    const std::vector<SortText> prepared(texts.begin(), texts.end());
    Texts sorted;
    for (const std::size_t row : SortedOrder(prepared, ascending)) sorted.push_back(texts[row]);
    return sorted;
}

// As numbers, as dates, or as texts.
TEST(RowOrder, TheFirstTextOfAPairDecidesHowItCompares) {
    const std::string pairs = R"(
        "9" < "10"   "10" > "9"   "007" = "7"   "" = "0"   "" < "1"   "0" = "Gate"
        "9" > "8 cameras"   "9" < "10a"   "18446744073709551616" < "18446744073709551617"
        "99999999999999999999999" < "100000000000000000000000"
        "02/01/2004" < "01/02/2004"   "31/12/2003" < "01/01/2004"   "05/05/2004" > "04/05/2004"
        "05/05/2004" = "05/05/2004"   "01/01/0000" > ""   "00/00/0000" = "short"
        "01/01/2004" < "......2005"   "01/01/2004" = "01.01.2004 more"   "01/01/2004" > "2/3/2004"
        "9a" > "10"   "2004/02/29 08:15:00" < "2004/02/29 08:15:01"
        "01/02/20045" < "02/01/2004"   "01-02-2004" < "02/01/2004"   "0a/02/2004" > "02/01/2004")";
    const std::regex pair("\"(.*?)\" ([<=>]) \"(.*?)\"");
    int seen = 0;
    for (std::sregex_iterator each(pairs.begin(), pairs.end(), pair), end; each != end; ++each) {
        EXPECT_EQ("<=>"[1 + Compare(each->str(1), each->str(3))], each -> str(2)[0]) << each->str();
        ++seen;
    }
    EXPECT_EQ(seen, 24);
}

TEST(RowOrder, TextsCompareAsTheLocaleDoes) {
    std::setlocale(LC_COLLATE, "");
    const Texts texts = {"gate",  "Gate",  "Gäste", "Gate 10", "Gate 9",
                         "zebra", "\xff?", "tür",   "_"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            const int expected = std::strcoll(a.c_str(), b.c_str());
            EXPECT_EQ(Compare(a, b), expected < 0 ? -1 : (expected > 0 ? 1 : 0)) << a << " " << b;
        }
    }
}

// Comparisons that contradict each other ("9" < "10" < "9a" < "9") still end with every row once.
TEST(RowOrder, SortsStablyBothWaysAndKeepsEveryRow) {
    const Texts rows = {"2", "02", "1", "002", "3", "01"};
    EXPECT_EQ(Sorted(rows, true), (Texts{"1", "01", "2", "02", "002", "3"}));
    EXPECT_EQ(Sorted(rows, false), (Texts{"3", "2", "02", "002", "1", "01"}));
    EXPECT_EQ(Sorted({}, true), Texts{});
    const Texts kinds = {"9", "10", "9a", "", "01/02/2004", "x", "0"};
    std::mt19937 random(2);
    Texts mixed;
    for (int k = 0; k < 100'000; ++k) mixed.push_back(kinds[random() % kinds.size()]);
    Texts sorted = Sorted(mixed, true);
    std::sort(sorted.begin(), sorted.end());
    std::sort(mixed.begin(), mixed.end());
    EXPECT_EQ(sorted, mixed);
}

TEST(ListColumns, NamesRunToTheirCommaAndWidthsAreTheirLeadingDigits) {
    constexpr int kMost = std::numeric_limits<int>::max();
    using Columns = std::vector<ListColumn>;
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
