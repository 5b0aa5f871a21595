#include "platform/text_field.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>

namespace marvolen {
namespace {

TEST(TextField, WithoutNulIsReadToItsLastByteButOne) {
    std::array<char, 260> field;
    field.fill('x');
    EXPECT_EQ(FieldText(field), std::string(259, 'x'));
    field[5] = '\0';
    EXPECT_EQ(FieldText(field), "xxxxx");
}

TEST(TextField, KeepsTheBytesBehindTheNul) {
    std::array<char, 10> field;
    field.fill('x');
    SetFieldText(field, "ab");
    EXPECT_EQ(std::string(field.data(), field.size()), std::string("ab\0xxxxxxx", 10));
}

TEST(TextField, CutsLongTextsBeforeACharacter) {
    std::array<char, 8> field{};
    SetFieldText(field, "1234567");
    EXPECT_EQ(FieldText(field), "1234567");
    SetFieldText(field, "12345678");
    EXPECT_EQ(FieldText(field), "1234567");
    SetFieldText(field, "123456\xC3\xA4");  // the umlaut would end in the NUL's place
    EXPECT_EQ(FieldText(field), "123456");
    SetFieldText(field, "1234\xF0\x9F\x93\xB7z");
    EXPECT_EQ(FieldText(field), "1234");
    SetFieldText(field, "\x80\x80\x80\x80\x80\x80\x80\x80\x80");  // not UTF-8
    EXPECT_EQ(FieldText(field).size(), 7U);
}

TEST(TextField, EndsAtANulWithinTheText) {
    std::array<char, 8> field{};
    SetFieldText(field, std::string_view("ab\0cd", 5));
    EXPECT_EQ(FieldText(field), "ab");
}

}  // namespace
}  // namespace marvolen
