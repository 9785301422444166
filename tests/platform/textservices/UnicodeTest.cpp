#include <tests/Testing.h>

#include <zorvan/platform/textservices/Unicode.h>

TEST(Unicode, TrimsByCodePoints) {
    for (const auto& [text, withoutSpaces, withoutNewlines] :
         {std::tuple("", "", ""),
          {" \t ", "", ""},
          {"\n a \n", "\n a \n", "a"},
          {"\u00A0\u3000a\u2003", "a", "a"},
          {"\u2028a\u0085", "\u2028a\u0085", "a"},
          {" \u0301", "\u0301", "\u0301"},
          {"\u200B", "\u200B", "\u200B"}, // it has no width, but is no space
          {"\x80 \xE3\x80 ", "\x80 \xE3\x80", "\x80 \xE3\x80"}}) {
        EXPECT_EQ(trimmed(text, CharacterSet::whitespaces), withoutSpaces);
        EXPECT_EQ(trimmed(text, CharacterSet::whitespacesAndNewlines), withoutNewlines);
    }
}

TEST(Unicode, ConvertsBetweenForms) {
    const struct {
        std::string_view text;
        std::u16string_view units;
        std::string_view back;
    } cases[] = {
        {"", u"", ""},
        {"aé中😀", u"aé中😀", "aé中😀"},
        {"a\xE2\x82z", u"a\uFFFDz", "a\uFFFDz"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", "\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& [text, units, back] : cases) {
        EXPECT_EQ(utf16FromUTF8(text), units);
        EXPECT_EQ(utf16Length(text), units.size());
        EXPECT_EQ(utf8FromUTF16(units), back);
    }
    const std::array<char16_t, 3> lone = {0xDC00, u'a', 0xD800};
    EXPECT_EQ(utf8FromUTF16({lone.data(), lone.size()}), "\uFFFDa\uFFFD");
}

TEST(Unicode, LowersCaseInNoParticularLanguage) {
    EXPECT_EQ(lowercased("İI"), "i\u0307i");
    EXPECT_EQ(lowercased("ÀΣ"), "àς");
    EXPECT_EQ(lowercased("A\xFFÀ"), "a\xFFà");
}
