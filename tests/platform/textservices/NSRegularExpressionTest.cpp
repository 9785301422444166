#include <tests/Testing.h>

#include <zorvan/platform/textservices/NSRegularExpression.h>

using Matches = std::vector<std::vector<std::string>>;
using Options = NSRegularExpression::Options;

namespace {

std::string failure(std::string_view pattern, std::string_view text = {}) {
    try {
        (void)NSRegularExpression(pattern, Options::none).captures(text);
    } catch (const RegularExpressionError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(NSRegularExpression, CapturesGroups) {
    const NSRegularExpression pairs(R"((\w+)=(\d+)?)", Options::none);
    EXPECT_EQ(pairs.captures("a=1, béta=, c=22"), (Matches{{"a", "1"}, {"béta", ""}, {"c", "22"}}));
    EXPECT_EQ(NSRegularExpression("a", Options::none).captures("aa"), (Matches{{}, {}}));
    EXPECT_EQ(NSRegularExpression("", Options::none).captures("a"), (Matches{{}, {}}));
    EXPECT_EQ(
        NSRegularExpression(R"((?=.*(.)\z)(.))", Options::none).captures("é\xFF😀\xE2\x82"),
        (Matches{
            {"\xE2\x82", "é"}, {"\xE2\x82", "\xFF"}, {"\xE2\x82", "😀"}, {"\xE2\x82", "\xE2\x82"}}));
    for (const std::string middle : {"b", "\xFF", "é", "😀", "\xE2\x82"})
        EXPECT_EQ(NSRegularExpression("((a)(.(c)))", Options::none).captures("_a" + middle + "c."),
                  (Matches{{"a" + middle + "c", "a", middle + "c", "c"}}));
}

TEST(NSRegularExpression, ReadsOptions) {
    const struct {
        Options options;
        std::string_view pattern, text;
        std::size_t plain, withOptions;
    } cases[] = {
        {Options::caseInsensitive, "É", "éÉ", 1, 2},
        // None lets the case differ as well.
        {Options::allowCommentsAndWhitespace, "a b # c", "ab AB", 0, 1},
        {Options::ignoreMetacharacters, "a.", "ab a. A.", 2, 1},
        {Options::dotMatchesLineSeparators, "a.b", "a\nb A\nB", 0, 1},
        {Options::anchorsMatchLines, "^b", "a\nb\nB", 0, 1},
        {Options::useUnixLineSeparators, "a.b", "a\rb A\rB", 0, 1},
        {Options::useUnicodeWordBoundaries, R"(\b3.5\b)", "x 3.5.1", 1, 0},
        {Options::caseInsensitive | Options::anchorsMatchLines, "^B", "a\nb", 0, 1},
    };
    for (const auto& [options, pattern, text, plain, withOptions] : cases)
        for (const auto& [read, found] : {std::pair(Options::none, plain), {options, withOptions}})
            EXPECT_EQ(NSRegularExpression::cached(pattern, read).captures(text).size(), found)
                << pattern;
}

TEST(NSRegularExpression, SaysWhyAPatternDoesNotCompile) {
    EXPECT_EQ(failure("ab("), "unbalanced parenthesis at line 1, column 3");
    EXPECT_EQ(failure("[a"), "missing closing bracket at line 1, column 2");
    EXPECT_EQ(failure("*"), "syntax error at line 1, column 1");
    EXPECT_EQ(failure("a{2,1}"), "maximum below minimum in {min,max} interval at line 1, column 6");
    EXPECT_EQ(failure(R"(a(b)\2)"), "reference to a group that does not exist at line 1, column 6");
    EXPECT_EQ(failure("(?<=a*)b"), "look-behind of unbounded length at line 1, column 7");
    EXPECT_EQ(failure("a\n("), "unbalanced parenthesis at line 2, column 1");
}

TEST(NSRegularExpression, GivesUpARunawaySearch) {
    for (const auto& [pattern, letters] :
         {std::pair("(a+)+b", 60u), {R"((a+)\1b)", 8'000}, {"(?>.*)b", 500'000}}) // steps, and time
        EXPECT_EQ(failure(pattern, std::string(letters, 'a')), "search takes too long") << pattern;
    EXPECT_EQ(failure("(?:(a|b)*)c", std::string(10'000'000, 'a')), "search needs too much memory");
    // The matches before do not start the count anew.
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += std::string(24, 'a') + "c";
    EXPECT_EQ(failure("(a+)+b|c", text), "search takes too long");
    // A long line is no reason to.
    const std::string line = std::string(10'000'000, 'x') + " (7)";
    EXPECT_EQ(NSRegularExpression(R"((.*)\((\d*)\))", Options::none).captures(line)[0][1], "7");
}

TEST(NSRegularExpression, ThreadsShareAnExpression) {
    const NSRegularExpression digits(R"((\d)(\D))", Options::none);
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                EXPECT_EQ(digits.captures("1a2b3c").size(), 3u);
                const std::string digit = std::to_string(i % 20); // more than are kept
                const auto found = NSRegularExpression::cached("(" + digit + ")", Options::none);
                EXPECT_EQ(found.captures("x" + digit), (Matches{{digit}}));
            }
        });
}
