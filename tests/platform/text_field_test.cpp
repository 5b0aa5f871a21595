#include "platform/text_field.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace marvolen {
namespace {

TEST(TextField, ReadsAndWritesWithinItsBytes) {
    std::array<char, 260> unended;
    unended.fill('x');
    EXPECT_EQ(FieldText(unended), std::string(259, 'x'));

    std::array<char, 8> field;
    field.fill('x');
    SetFieldText(field, "ab");
    EXPECT_EQ(std::string(field.data(), field.size()), std::string("ab\0xxxxx", 8));
    const char* const cases[][2] = {
        {"1234567", "1234567"},
        {"12345678", "1234567"},
        {"123456\xC3\xA4", "123456"},  // the umlaut would end in the NUL's place
        {"1234\xF0\x9F\x93\xB7z", "1234"},
        {"\x80\x80\x80\x80\x80\x80\x80\x80\x80", "\x80\x80\x80\x80\x80\x80\x80"},  // not UTF-8
    };
    for (const auto& [text, kept] : cases) {
        SetFieldText(field, text);
        EXPECT_EQ(FieldText(field), kept);
    }
}

}  // namespace
}  // namespace marvolen
