#include <tests/Testing.h>
#include <tests/randomText.h>

#include <zorvan/platform/textservices/Characters.h>
#include <zorvan/platform/textservices/Unicode.h>

#include <sstream>
#include <unicode/normalizer2.h>
#include <unicode/ubrk.h>
#include <unicode/unistr.h>

namespace {

std::vector<std::string> charactersOf(std::string_view text) {
    std::vector<std::string> result;
    for (const std::string_view character : Characters(text))
        result.emplace_back(character);
    return result;
}

std::string utf8(char32_t codePoint) {
    std::string text;
    icu::UnicodeString(static_cast<UChar32>(codePoint)).toUTF8String(text);
    return text;
}

/// Every way to walk over a text agrees with its characters.
void expectConsistent(std::string_view text) {
    const auto characters = charactersOf(text);
    ASSERT_EQ(std::accumulate(characters.begin(), characters.end(), std::string()), text);
    ASSERT_EQ(characterCount(text), characters.size());
    std::vector<std::size_t> boundaries{0};
    for (const auto& character : characters)
        boundaries.push_back(boundaries.back() + character.size());
    for (std::size_t i = 0; i < boundaries.size(); ++i) {
        const std::size_t fromEnd = characters.size() - i;
        ASSERT_EQ(advanceCharacters(text, 0, i).offset, boundaries[i]);
        ASSERT_EQ(retreatCharacters(text, fromEnd).offset, boundaries[i]) << fromEnd;
        ASSERT_EQ(retreatCharacters(text, fromEnd).passed, fromEnd);
    }
}

std::vector<std::string> charactersByICU(const std::u16string& units) {
    static UErrorCode status = U_ZERO_ERROR;
    static UBreakIterator* iterator = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    ubrk_setText(iterator, units.data(), static_cast<std::int32_t>(units.size()), &status);
    std::vector<std::string> result;
    std::int32_t start = 0;
    for (std::int32_t end = ubrk_next(iterator); end != UBRK_DONE; end = ubrk_next(iterator)) {
        result.push_back(utf8FromUTF16(std::u16string_view(units).substr(
            static_cast<std::size_t>(start), static_cast<std::size_t>(end - start))));
        start = end;
    }
    return result;
}

std::string decomposedByICU(const std::u16string& units) {
    UErrorCode status = U_ZERO_ERROR;
    std::string result;
    const icu::UnicodeString text(units.data(), static_cast<std::int32_t>(units.size()));
    icu::Normalizer2::getNFDInstance(status)->normalize(text, status).toUTF8String(result);
    return result;
}

} // namespace

// Unicode's own word, besides that of ICU's tables. The file may be of an older version, whose rows
// a newer one keeps to.
TEST(Characters, FollowUnicodesOwnTestData) {
    std::ifstream file("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
    int rows = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream row(line.substr(0, line.find('#')));
        std::vector<std::string> expected;
        for (std::string token; row >> token;)
            if (token == "÷")
                expected.emplace_back();
            else if (token != "×")
                expected.back() += utf8(static_cast<char32_t>(std::stoul(token, nullptr, 16)));
        if (expected.empty())
            continue;
        expected.pop_back();
        EXPECT_EQ(charactersOf(std::accumulate(expected.begin(), expected.end(), std::string())),
                  expected)
            << line;
        ++rows;
    }
    EXPECT_GT(rows, 600) << "of the package unicode-data";
}

TEST(Characters, AgreeWithICUOnRandomText) {
    // One code point or more of every class that the rules tell apart, and some plain ones.
    constexpr std::array<char32_t, 40> alphabet = {
        'a',     ' ',     '1',     '\r',    '\n',    0x00,   0x7F,    0xA9,    0x300,   0x308,
        0x200D,  0x200C,  0x600,   0x903,   0x915,   0x937,  0x94D,   0x93C,   0xE33,   0x1100,
        0x1160,  0x11A8,  0xAC00,  0xAC01,  0x4E2D,  0x2028, 0xFE0F,  0x20E3,  0xC95,   0xC4D,
        0x1F1E6, 0x1F1FF, 0x1F600, 0x1F468, 0x1F3FF, 0x2764, 0xE0020, 0x110BD, 0x11F02, 0x1F469};
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        std::u16string units;
        const std::size_t length = random() % 24;
        for (std::size_t i = 0; i < length; ++i)
            units += utf16FromUTF8(utf8(alphabet[random() % alphabet.size()]));
        const std::string text = utf8FromUTF16(units);
        ASSERT_EQ(charactersOf(text), charactersByICU(units)) << testing::PrintToString(text);
        expectConsistent(text);
    }
}

TEST(Characters, FollowICUForEveryCodePoint) {
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        const std::u16string units = u"\u0915" + utf16FromUTF8(utf8(c)) +
                                     u"\u094D\u0915\u1100\U0001F469\u200D" +
                                     utf16FromUTF8(utf8(c)) + u"\u1160a";
        const std::string text = utf8FromUTF16(units);
        ASSERT_EQ(charactersOf(text), charactersByICU(units)) << std::hex << +c;
        ASSERT_EQ(canonicalCharacter(text), decomposedByICU(units)) << std::hex << +c;
    }
}

TEST(Characters, KeepIllFormedBytes) {
    const struct {
        std::string_view text;
        std::vector<std::string> characters;
    } cases[] = {
        {"a\xE2\x82", {"a", "\xE2\x82"}},                       // cut short
        {"\xE2\x82\xCC\x81", {"\xE2\x82", "\xCC\x81"}},         // no mark joins it
        {"\xED\xA0\x80", {"\xED", "\xA0", "\x80"}},             // surrogate
        {"\xF4\x90\x80\x80", {"\xF4", "\x90", "\x80", "\x80"}}, // past the last code point
    };
    for (const auto& [text, characters] : cases)
        EXPECT_EQ(charactersOf(text), characters);
}

TEST(Characters, WalkOverRandomBytesTheSameBothWays) {
    // Long runs of ASCII take the fast paths; the rest cuts them at every distance.
    const std::string digits(70, '7');
    const std::string_view restOfBlock = std::string_view(digits).substr(7); // after a first byte
    const std::array<std::string_view, 11> pieces = {
        "\r",       "\n",   "\r\n", "plain text", "\xCC\x81", "\xE2\x82", "\xF0\x9F\x87\xA6",
        "\xD8\x80", digits, "\xFF", restOfBlock};
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round)
        expectConsistent(randomText(random, pieces, 11));
}

TEST(Characters, TakeLinearTimeOverLongTexts) {
    std::string flags;
    for (int i = 0; i < 300'000; ++i)
        flags += "\xF0\x9F\x87\xA6";
    EXPECT_EQ(characterCount(flags), 150'000u);
    EXPECT_EQ(retreatCharacters(flags, 100'000).offset, 400'000u);
    EXPECT_EQ(characterCount("e" + std::string(10'000'000, '\xCC')), 10'000'001u);
    EXPECT_EQ(retreatCharacters(std::string(10'000'000, 'a'), 9'999'999).offset, 1u);
}

TEST(Characters, AreEqualWhenCanonicallyEquivalent) {
    std::string above = "\u0301", below = "\u0323"; // so many that their square would take hours
    for (int i = 0; i < 20; ++i) {
        above += above;
        below += below;
    }
    EXPECT_TRUE(charactersAreEqual("é" + above + below, "é" + below + above));
    EXPECT_FALSE(charactersAreEqual("é" + above + below, "e" + below + above));
    EXPECT_FALSE(charactersAreEqual("ﬁ", "fi"));
    EXPECT_FALSE(charactersAreEqual("\xFF", "\xFE"));
    EXPECT_FALSE(charactersAreEqual("\xFF", "\uFFFD"));
}
