#include "app/row_order.h"

#include "app/decimal.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
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

TEST(RowOrder, DigitsCompareByValue) {
    EXPECT_EQ(Compare("9", "10"), -1);
    EXPECT_EQ(Compare("10", "9"), 1);
    EXPECT_EQ(Compare("007", "7"), 0);
    EXPECT_EQ(Compare("", "0"), 0);
    EXPECT_EQ(Compare("", "1"), -1);
    EXPECT_EQ(Compare("99999999999999999999999", "100000000000000000000000"), -1);
    EXPECT_EQ(Compare("18446744073709551616", "18446744073709551617"), -1);
}

TEST(RowOrder, OnlyTheFirstTextDecidesTheKindOfComparison) {
    EXPECT_EQ(Compare("9", "8 cameras"), 1);
    EXPECT_EQ(Compare("9", "10a"), -1);
    EXPECT_EQ(Compare("9a", "10"), 1);  // as texts
    EXPECT_EQ(Compare("5", "Gate"), 1);
    EXPECT_EQ(Compare("0", "Gate"), 0);
    EXPECT_EQ(Compare("Gate", "0"), 1);
    EXPECT_EQ(Compare("", "-1"), 0);
}

TEST(RowOrder, DatesCompareByYearThenMiddleThenFirst) {
    EXPECT_EQ(Compare("02/01/2004", "01/02/2004"), -1);
    EXPECT_EQ(Compare("31/12/2003", "01/01/2004"), -1);
    EXPECT_EQ(Compare("05/05/2004", "04/05/2004"), 1);
    EXPECT_EQ(Compare("05/05/2004", "05/05/2004"), 0);
}

TEST(RowOrder, ADateCutsTheOtherTextAtItsOwnPlaces) {
    EXPECT_EQ(Compare("01/01/0000", ""), 1);  // year equal to nothing, month 1 after none
    EXPECT_EQ(Compare("00/00/0000", "short"), 0);
    EXPECT_EQ(Compare("01/01/2004", "......2005"), -1);
    EXPECT_EQ(Compare("01/01/2004", "01.01.2004 and more"), 0);
    EXPECT_EQ(Compare("01/01/2004", "2/3/2004"), 1);  // cut where the year ends early
}

TEST(RowOrder, WhatOnlyResemblesADateIsText) {
    EXPECT_EQ(Compare("2004/02/29 08:15:00", "2004/02/29 08:15:01"), -1);
    EXPECT_EQ(Compare("01/02/20045", "02/01/2004"), -1);
    EXPECT_EQ(Compare("01-02-2004", "02/01/2004"), -1);
    EXPECT_EQ(Compare("0a/02/2004", "02/01/2004"), 1);  // '2' before 'a'
}

TEST(RowOrder, TextsCompareAsTheLocaleDoes) {
    std::setlocale(LC_COLLATE, "");
    const Texts texts = {"gate", "Gate",  "Gäste", "Gate 10", "Gate 9", "ZZ", "zebra",
                         "é",    "\xff?", "tür",   "Tür",     " a",     "_"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            const int expected = std::strcoll(a.c_str(), b.c_str());
            EXPECT_EQ(Compare(a, b), expected < 0 ? -1 : (expected > 0 ? 1 : 0)) << a << " " << b;
        }
    }
    EXPECT_NE(Compare("gate", "Gate"), 0);
}

TEST(RowOrder, SortsStablyBothWays) {
    const Texts rows = {"2", "02", "1", "002", "3", "01"};
    EXPECT_EQ(Sorted(rows, true), (Texts{"1", "01", "2", "02", "002", "3"}));
    EXPECT_EQ(Sorted(rows, false), (Texts{"3", "2", "02", "002", "1", "01"}));
    EXPECT_EQ(Sorted({}, true), Texts{});
    EXPECT_EQ(Sorted({"b"}, false), Texts{"b"});
}

// Comparisons that contradict each other ("9" < "10" < "9a" < "9") still end with every row once.
TEST(RowOrder, AMixedColumnKeepsEveryRow) {
    const Texts kinds = {"9", "10", "9a", "", "01/02/2004", "x", "0"};
    std::mt19937 random(2);
    Texts rows;
    for (int k = 0; k < 5000; ++k) rows.push_back(kinds[random() % kinds.size()]);
    for (const bool ascending : {true, false}) {
        const Texts sorted = Sorted(rows, ascending);
        EXPECT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), rows.begin(), rows.end()));
    }
}

}  // namespace
}  // namespace marvolen
