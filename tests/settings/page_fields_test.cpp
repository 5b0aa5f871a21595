// What a page's fields and a record make of each other.

#include "settings/page_fields.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace marvolen::test {
namespace {

bool SameBytes(const ChannelInfo& a, const ChannelInfo& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Every byte is random, so texts are in no encoding, end anywhere or nowhere, and go on behind it.
ChannelInfo RandomRecord(std::mt19937& random) {
    ChannelInfo record;
    auto* const bytes = reinterpret_cast<unsigned char*>(&record);
    for (std::size_t k = 0; k < sizeof record; ++k) {
        bytes[k] = static_cast<unsigned char>(random());
    }
    return record;
}

TEST(PageFields, ChangesOnlyTheBytesOfAFieldThatSaysSomethingElse) {
    std::mt19937 random(1);
    for (int run = 0; run < 200; ++run) {
        const ChannelInfo before = RandomRecord(random);
        ChannelInfo record = before;
        PageFields fields = FieldsOf(record);
        Commit(fields, record);
        ASSERT_TRUE(SameBytes(record, before)) << run;

        fields.port = "8081";
        fields.sizeIndex = 2;
        ChannelInfo expected = before;
        std::memcpy(expected.port, "8081", 5);
        expected.sizeIndex = 2;
        Commit(fields, record);
        ASSERT_TRUE(SameBytes(record, expected)) << run;
    }
}

TEST(PageFields, TakesMaxSizeFromTheLeadingDigits) {
    for (const auto& [text, value] : std::vector<std::pair<std::string, std::int32_t>>{
             {"", 0},
             {"MB", 0},
             {"1024", 1024},
             {" \t+007 MB 9", 7},
             {"-1", -1},
             {"+-1", 0},
             {"- 1", 0},
             {"2147483648", 2147483647},
             {"99999999999999999999", 2147483647},
             {"-2147483648", -2147483648},
             {"-2147483649", -2147483648},
         }) {
        EXPECT_EQ(MaxSizeOf(text), value) << text;
    }
}

}  // namespace
}  // namespace marvolen::test
