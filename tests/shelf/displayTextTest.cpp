#include "displayText.h"
#include <tests/Testing.h>

TEST(DisplayText, ShowsWhatCannotBePrinted) {
    struct {
        std::string bytes, shown;
    } table[] = {
        {"plain ünïcode 日本", "plain ünïcode 日本"},
        {"a\nb\tc\rd", "a\\nb\\tc\\rd"},
        {"\x1B[31mred", "\\x1B[31mred"},
        {std::string("nul\0!", 5), "nul\\x00!"},
        {"caf\xE9", "caf\\xE9"},
        {"\xC0\xAF", "\\xC0\\xAF"},          // "/" in too many bytes
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"}, // half of a pair
        {"\xF8\x88\x80\x80\x80", "\\xF8\\x88\\x80\\x80\\x80"},
        {"photo\u202Egpj.exe", "photo\\u202Egpj.exe"},
        {"cut \xE6\x97", "cut \\xE6\\x97"},
        {"\u0085", "\\u0085"},
    };
    for (const auto& row : table)
        EXPECT_EQ(forDisplay(row.bytes), row.shown);
}

TEST(DisplayText, MeasuresColumns) {
    EXPECT_EQ(displayWidth("abc"), 3u);
    EXPECT_EQ(displayWidth("日本"), 4u);
    EXPECT_EQ(displayWidth("e\u0301"), 1u);
    EXPECT_EQ(displayWidth(padded("日", 5)), 5u);
}

TEST(DisplayText, ShortensInTheMiddle) {
    EXPECT_EQ(shortened("photo.jpg", 9), "photo.jpg");
    EXPECT_EQ(shortened("photograph.jpg", 9), "phot….jpg");
    EXPECT_EQ(shortened("abc", 1), "…");
    EXPECT_EQ(shortened("abc", 0), "");
    for (std::size_t width = 0; width < 20; ++width)
        EXPECT_LE(displayWidth(shortened("日本語の写真 e\u0301té.jpeg", width)), width);
}

TEST(DisplayText, OrdersNamesForPeople) {
    const std::vector<std::string> ordered{
        "",      "1",         "2",          "10",           "a", "a/b", "a 1", "A.jpg",
        "B.jpg", "IMG_9.jpg", "img_10.jpg", "IMG_0011.jpg", "z"};
    for (std::size_t i = 0; i < ordered.size(); ++i)
        for (std::size_t j = 0; j < ordered.size(); ++j)
            EXPECT_EQ(comesBefore(ordered[i], ordered[j]), i < j)
                << ordered[i] << ", " << ordered[j];
}

TEST(DisplayText, OrderIsStrictAndTotal) {
    std::mt19937 random(3);
    std::vector<std::string> names;
    for (int i = 0; i < 60; ++i) {
        std::string name(random() % 5, ' ');
        for (char& c : name)
            c = "00129aAbB/ ~\xC3"[random() % 13];
        names.push_back(name);
    }
    for (const auto& a : names)
        for (const auto& b : names) {
            EXPECT_EQ(comesBefore(a, b) || comesBefore(b, a), a != b);
            EXPECT_FALSE(comesBefore(a, b) && comesBefore(b, a));
            for (const auto& c : names)
                EXPECT_TRUE(!comesBefore(a, b) || !comesBefore(b, c) || comesBefore(a, c))
                    << a << ", " << b << ", " << c;
        }
}
