#include <tests/Testing.h>
#include <tests/files/ChildProcess.h>
#include <tests/randomText.h>

#include <zorvan/platform/foundation/NSUserName.h>
#include <zorvan/platform/textservices/Locale.h>
#include <zorvan/platform/textservices/Unicode.h>
#include <zorvan/text/Double.h>
#include <zorvan/text/String.h>

using Matches = std::vector<std::vector<std::string>>;

TEST(String, TellsBlankFromEmptyAndShapes) {
    for (const char* blank : {"", "  \n", "\u00A0\u2028\t\r\n\u0085"})
        EXPECT_TRUE(isBlank(blank)) << blank;
    EXPECT_FALSE(isBlank(" \u0301"));
    EXPECT_EQ(nonEmpty(""), std::nullopt);
    EXPECT_EQ(nonBlank("  \n"), std::nullopt);
    EXPECT_EQ(nonBlank(" a "), " a ");
    EXPECT_EQ(strip("\n a \n"), "\n a \n");
    EXPECT_EQ(strip(" \x80 \xE3\x80 \u3000"), "\x80 \xE3\x80");
    EXPECT_FALSE(isValidMessage(""));
    EXPECT_TRUE(isValidMessage(" "));
    EXPECT_EQ(count("e\u0301\r\n👨‍👩‍👧"), 3);
    EXPECT_EQ(minPadding("abc", 4), "abc ");
    EXPECT_EQ(minPadding("abcdef", 4), "abcdef");
    EXPECT_EQ(minPadding("😀", 4), "😀  "); // two UTF-16 units
    for (const auto& [text, changed] :
         {std::pair("Hello", "hello"), {"", ""}, {"İTÉ", "i\u0307TÉ"}, {"\xFFÀ", "\xFFÀ"}})
        EXPECT_EQ(decapitalized(text), changed);
}

TEST(String, NumbersCopies) {
    // A name needs four characters; "٣" is a digit to the pattern, but no decimal integer; "."
    // stays in its line.
    for (const auto& [name, copy] : {std::pair("(1)", "(1) (1)"),
                                     {"e\u0301(1", "e\u0301(1 (1)"},
                                     {"File ()", "File () (1)"},
                                     {"File (007)", "File (8)"},
                                     {"File (٣)", "File (٣) (1)"},
                                     {"Report (2) final", "Report (3)"}})
        EXPECT_EQ(incremented(name), copy);
    // In time with the length, whatever the text is made of, and as the pattern has it.
    for (const std::string part : {"x", "(", "(1", "(1) ", "1"}) {
        std::string name;
        while (name.size() < 3'000'000)
            name += part;
        EXPECT_TRUE(incremented(name + "(7)\ntail").ends_with("(8)")) << part;
        EXPECT_TRUE(incremented(name + "(7").ends_with(part == "(1) " ? "(2)" : "(7 (1)")) << part;
    }
    const NSRegularExpression pattern(R"((.*)\((\d*)\))", NSRegularExpression::Options::none);
    std::mt19937 random(4);
    const std::string_view alphabet[] = {"(",  ")",      "1", "2",    "x",
                                         "\n", "\u2028", "٣", "\xFF", "\r\n"};
    for (int i = 0; i < 20'000; ++i) {
        const std::string name = randomText(random, alphabet, 11);
        const auto matches = pattern.captures(name);
        const auto found = numberInParentheses(name);
        ASSERT_EQ(found.has_value(), !matches.empty()) << name;
        ASSERT_TRUE(!found || (found->before == matches[0][0] && found->digits == matches[0][1]));
    }
    EXPECT_EQ(incremented("File (9223372036854775806)"), "File (9223372036854775807)");
    EXPECT_EQ(incremented("File (9223372036854775807)"), "File (9223372036854775807) (1)");
}

TEST(String, Shortens) {
    EXPECT_EQ(reducedStringAtStart("abcdefghij", 6), "...hij");
    EXPECT_EQ(reducedStringAtEnd("abcdefghij", 6), "abc...");
    for (const int length : {6, 7})
        EXPECT_EQ(reducedStringAtMiddle("abcdefghij", length), "ab...ij");
    EXPECT_EQ(reducedStringAtStart("e\u0301🇩🇪🇫🇷xy", 4), "...y");
    EXPECT_EQ(reducedStringAtEnd("e\u0301🇩🇪🇫🇷xy", 4), "e\u0301...");
    for (const auto reduce : {reducedStringAtStart, reducedStringAtEnd, reducedStringAtMiddle}) {
        EXPECT_EQ(reduce("abc", 3), "abc");
        for (const auto& [length, dots] : {std::pair(3, "..."), {1, "."}, {0, ""}, {-5, ""}})
            EXPECT_EQ(reduce("abcdefghij", length), dots);
    }
    EXPECT_EQ(reducedStringAtStart("abcdefghij", 2), "..");
    EXPECT_EQ(reducedStringAtMiddle("abcdefghij", 2), "...");
}

TEST(String, ReplacesPrefixesAndSuffixes) {
    std::string s = "e\u0301tude";
    EXPECT_FALSE(replacePrefix(s, "e", "x"));
    EXPECT_EQ(s, "e\u0301tude");
    EXPECT_TRUE(replacePrefix(s, "é", "E"));
    EXPECT_TRUE(replacePrefix(s, "", ">"));
    EXPECT_TRUE(replaceSuffix(s, "ude", s)); // the text itself is put in
    EXPECT_EQ(s, ">Et>Etude");
    EXPECT_EQ(replacingPrefix("abc", "b", "x"), "abc");
    EXPECT_EQ(replacingPrefix("ab", "abc", ""), "ab");
    EXPECT_EQ(replacingSuffix("a\r\n", "\n", ""), "a\r\n");
    EXPECT_EQ(replacingSuffix("ae\u0301", "\u0301", ""), "ae\u0301");
    EXPECT_EQ(removedPrefix("abab", "ab"), "ab");
    EXPECT_EQ(removedSuffix("🇩🇪🇫🇷", "🇫🇷"), "🇩🇪");
    EXPECT_EQ(removedSuffix("ab", "abab"), "ab");
}

TEST(String, AbbreviatesTheHomeFolder) {
    const std::string home = "/Users/" + NSUserName();
    ASSERT_NE(NSUserName(), "");
    EXPECT_EQ(abreviatingTildeInPath(home + "/Documents"), "~/Documents");
    EXPECT_EQ(abreviatingTildeInPath(home + "2/x"), "~2/x");
    EXPECT_EQ(abreviatingTildeInPath(home), "~");
    std::string other = "/x" + home;
    EXPECT_FALSE(abreviateTildeInPath(other));
    EXPECT_EQ(other, "/x" + home);
    const pid_t child = startChild([] { // as nobody the system knows
        EXPECT_TRUE(::setuid(54321) != 0 ||
                    abreviatingTildeInPath("/Users/bob/x") == "/Users/bob/x");
    });
    EXPECT_EQ(exitStatus(child), 0);
    // The order of the Finder is that of names.
    EXPECT_EQ(finderCompare("file2", "file10"), ComparisonResult::orderedAscending);
    EXPECT_EQ(finderCompare("é", "E"), ComparisonResult::orderedSame);
    EXPECT_EQ(finderCompare("Öl", "Z", Locale("sv")), ComparisonResult::orderedDescending);
}

TEST(String, CapturesMatches) {
    EXPECT_TRUE(captureMatches("A", "(a)").empty());
    EXPECT_EQ(caseInsensitiveCaptureMatches("A", "(a)"), Matches{{"A"}});
    testing::internal::CaptureStdout();
    EXPECT_TRUE(captureMatches("a", "(a").empty());
    // A search that is given up keeps what it has found.
    EXPECT_EQ(captureMatches("xc" + std::string(60, 'a'), "((a+)+)b|(x)c|(z)"),
              (Matches{{"", "", "x", ""}}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "invalid regex: unbalanced parenthesis at line 1, column 2\n"
              "regex given up: search takes too long\n");
}

TEST(String, ValidatesEmailAsThePatternDoes) {
    const NSRegularExpression pattern(R"(\A([A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,64})\z)",
                                      NSRegularExpression::Options::none);
    std::mt19937 random(9);
    const auto some = [&](std::string_view alphabet, std::size_t most) {
        return randomText(random, alphabet, most);
    };
    int valid = 0;
    for (int round = 0; round < 50'000; ++round) {
        const std::string text = some("aZ9._%+-@ ", 4) + some("@", 1) + some("aZ9.-_", 4) +
                                 some(".", 1) + some("aZZ9.\n", 4);
        const bool matches = !pattern.captures(text).empty();
        ASSERT_EQ(isValidEmail(text), matches) << text;
        valid += matches;
    }
    EXPECT_GT(valid, 100);
    EXPECT_TRUE(isValidEmail("x@y." + std::string(64, 'x')));
    EXPECT_FALSE(isValidEmail("x@y." + std::string(65, 'x')));
}

TEST(String, ValidatesLinks) {
    EXPECT_TRUE(isValidLink("https://example.com/😀"));
    for (const char* none : {"", " https://example.com", "https://example.com."})
        EXPECT_FALSE(isValidLink(none)) << none;
    EXPECT_TRUE(isValid("joe@example.com", NSTextCheckingType::link));
    EXPECT_FALSE(isValid("2021-01-01", NSTextCheckingType::date));
}

TEST(Double, FormatsPercentForTheCurrentLocale) {
    // Halves go to the even neighbour.
    const Locale before = Locale::current();
    for (const auto& [locale, value, text] : {std::tuple("en_US", -0.5, "-50%"),
                                              {"en_US_POSIX", 12.34, "1,234%"},
                                              {"en_US", 0.125, "12%"},
                                              {"de_DE", 12.34, "1.234\u00A0%"},
                                              {"ar_EG", 0.5, "٥٠٪\u061C"}}) {
        Locale::setCurrent(Locale(locale));
        EXPECT_EQ(formatPercent(value), text) << locale << " " << value;
    }
    Locale::setCurrent(Locale("en_US"));
    EXPECT_EQ(formatPercent(1e300).size(), 404u); // 303 digits, 100 commas and the sign
    EXPECT_EQ(formatPercent(std::nan("")), "NaN%");
    Locale::setCurrent(before);
}
