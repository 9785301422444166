#include <tests/Testing.h>

#include <zorvan/platform/textservices/Unicode.h>

TEST(Unicode, ConvertsBetweenForms) {
    EXPECT_EQ(utf8FromUTF16(utf16FromUTF8("aé中😀")), "aé中😀");
    EXPECT_EQ(utf16FromUTF8("a\xE2\x82z\xED\xA0\x80"), u"a\uFFFDz\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(utf16Length("😀\xE2\x82z"), 4u);
    const std::array<char16_t, 3> lone = {0xDC00, u'a', 0xD800};
    EXPECT_EQ(utf8FromUTF16({lone.data(), lone.size()}), "\uFFFDa\uFFFD");
}
