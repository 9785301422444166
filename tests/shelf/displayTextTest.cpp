#include "displayText.h"
#include <tests/Testing.h>

TEST(DisplayText, ShowsWhatCannotBePrinted) {
    const std::pair<std::string, std::string> table[] = {
        {"ünïcode 日本\na\tb\rc", "ünïcode 日本\\na\\tb\\rc"},
        {"\x1B[31mred", "\\x1B[31mred"},
        {std::string("nul\0!", 5), "nul\\x00!"},
        {"caf\xE9", "caf\\xE9"},
        {"\xC0\xAF", "\\xC0\\xAF"},          // "/" in too many bytes
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"}, // half of a pair
        {"photo\u202Egpj.exe", "photo\\u202Egpj.exe"},
        {"cut \xE6\x97", "cut \\xE6\\x97"},
        {"\u0085", "\\u0085"},
    };
    for (const auto& [bytes, shown] : table)
        EXPECT_EQ(forDisplay(bytes), shown);
}

TEST(DisplayText, MeasuresColumnsAndShortensInTheMiddle) {
    EXPECT_EQ(displayWidth("日本 e\u0301"), 6u);
    EXPECT_EQ(displayWidth(padded("日", 5)), 5u);
    EXPECT_EQ(shortened("photo.jpg", 9), "photo.jpg");
    EXPECT_EQ(shortened("photograph.jpg", 9), "phot….jpg");
    EXPECT_EQ(shortened("abc", 1), "…");
    for (std::size_t width = 0; width < 20; ++width)
        EXPECT_LE(displayWidth(shortened("日本語の写真 e\u0301té.jpeg", width)), width);
}

TEST(DisplayText, OrdersNamesForPeople) {
    const std::vector<std::string> ordered{
        "",  "/",   " ",   "0",     "00",  "01",    "1",         "2",          "10",           "A",
        "a", "a/b", "a 1", "A.jpg", "ab1", "B.jpg", "IMG_9.jpg", "img_10.jpg", "IMG_0011.jpg", "z",
        "~", "\xC3"};
    for (std::size_t i = 0; i < ordered.size(); ++i)
        for (std::size_t j = 0; j < ordered.size(); ++j)
            EXPECT_EQ(comesBefore(ordered[i], ordered[j]), i < j)
                << ordered[i] << ", " << ordered[j];
}
