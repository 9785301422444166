#include <tests/Testing.h>

#include <zorvan/text/String.h>

#include <clocale>

TEST(StringAccess, CountsCharacters) {
    const std::string s = "e\u0301\r\n🇩🇪x\xFF";
    for (const auto& [offset, index] : {std::pair(0, 0u), {1, 3u}, {2, 5u}, {3, 13u}, {5, 15u}}) {
        EXPECT_EQ(startIntIndexToStringIndex(s, offset), index);
        EXPECT_EQ(endIntIndexToStringIndex(s, 5 - offset), index);
    }
    EXPECT_EQ(rangeToStringRange(s, {1, 3}), (StringRange{3, 13}));
    EXPECT_EQ(substring(s, {.with = {2, 4}}), "🇩🇪x");
    EXPECT_EQ(substring(s, {.from = 4}), "\xFF");
}

TEST(StringAccess, Edits) {
    std::string s = "abc";
    insert(s, "🇩🇪", 1);
    insert(s, s, 4);
    EXPECT_EQ(s, "a🇩🇪bca🇩🇪bc");
    EXPECT_EQ(remove(s, 1), "🇩🇪");
    removeSubrange(s, {3, 6});
    EXPECT_EQ(s, "abcc");
    EXPECT_EQ(removeFirstChar(s), "a");
    EXPECT_EQ(removeLastChar(s), "c");
    std::string marks = "x\r\n\u0301\u0301";
    EXPECT_EQ(removeLastChar(marks), "\u0301\u0301");
    EXPECT_EQ(removeLastChar(marks), "\r\n");
    EXPECT_EQ(removeLastChar(marks), "x");
    EXPECT_EQ(marks, "");
}

TEST(StringAccess, SafeMembersNeverFail) {
    for (const auto& [to, text] : {std::pair(5, "abc"), {3, "abc"}, {2, "ab"}, {-1, ""}})
        EXPECT_EQ(safeSubstring("abc", {.to = to}), text);
    for (const auto& [from, text] :
         {std::pair(std::int64_t{3}, ""), {1, "bc"}, {-1, "abc"}, {INT64_MAX, ""}})
        EXPECT_EQ(safeSubstring("abc", {.from = from}), text);
    EXPECT_EQ(safeChar("abc", 3), std::nullopt);
    EXPECT_EQ(safeChar("ae\u0301", 1), "e\u0301");
}

TEST(StringAccess, ReadsIntegers) {
    constexpr std::int64_t largest = INT64_MAX, smallest = INT64_MIN;
    EXPECT_EQ(safeInt("🇩🇪42x", {1, 3}), 42);
    for (const std::int64_t number : {std::int64_t{7}, std::int64_t{-7}, largest, smallest})
        EXPECT_EQ(safeInt(std::to_string(number), {0, count(std::to_string(number))}), number);
    EXPECT_EQ(safeInt("+7", {0, 2}), 7);
    const std::pair<std::string_view, Range> none[] = {
        {"12ab", {0, 3}}, {"12", {0, 3}},      {"12", {-1, 2}},      {"12", {1, 1}},
        {"12", {2, 1}},   {"+-7", {0, 3}},     {" 7", {0, 2}},       {"1\u0301", {0, 1}},
        {"٣", {0, 1}},    {"1", {0, largest}}, {"1", {smallest, 1}},
    };
    for (const auto& [text, range] : none)
        EXPECT_EQ(safeInt(text, range), std::nullopt) << text << " " << range.lower;
    EXPECT_EQ(safeInt("9223372036854775808", {0, 19}), std::nullopt);
}

TEST(StringAccess, ReadsReals) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::pair<std::string_view, double> cases[] = {
        {"1.5", 1.5},    {"+1.5", 1.5},   {"-.5", -0.5},       {"1.", 1.0},
        {"1e3", 1000.0}, {"1e-999", 0.0}, {"1e999", infinity}, {"-1e999", -infinity},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(safeDouble(text, {0, count(text)}), value) << text;
    for (const std::string_view none :
         {"1,5", "", ".", "-", "+-1", "1e", "inf", "nan", "0x10", " 1", "1 "})
        EXPECT_EQ(safeDouble(none, {0, count(none)}), std::nullopt) << none;
    EXPECT_EQ(safeDouble("0.1000000000000000055511151231257827", {0, 36}), 0.1);
    EXPECT_EQ(safeDouble("x1.5", {1, 4}), 1.5);
}

TEST(StringAccessDeathTest, StopsOnOffsetsOutside) {
    std::string s = "e\u0301x";
    const auto stops = [](const std::string& asked, int of = 2) {
        return "^String index is out of bounds: " + asked + " in a text of " + std::to_string(of) +
               "\n$";
    };
    EXPECT_DEATH((void)startIntIndexToStringIndex(s, 3), stops("3"));
    EXPECT_DEATH((void)endIntIndexToStringIndex(s, 3), stops("3 before the end"));
    EXPECT_DEATH((void)endIntIndexToStringIndex(s, -1), stops("-1 before the end"));
    EXPECT_DEATH((void)substring(s, {.with = {2, 1}}), stops("2 to 1"));
    EXPECT_DEATH((void)substring(s, {.from = -1}), stops("-1"));
    EXPECT_DEATH(remove(s, 2), stops("2"));
    EXPECT_DEATH(removeSubrange(s, {0, 3}), stops("0 to 3"));
    std::string empty;
    EXPECT_DEATH(removeFirstChar(empty), stops("0", 0));
    EXPECT_DEATH(removeLastChar(empty), stops("0", 0));
}
