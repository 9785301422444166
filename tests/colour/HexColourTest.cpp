#include <tests/Testing.h>

#include <zorvan/colour/CMYKA.h>
#include <zorvan/colour/HSBA.h>
#include <zorvan/colour/HSLA.h>
#include <zorvan/colour/RGBA.h>

namespace {

RGBA bytes(int r, int g, int b, int a = 255) {
    return {r / 255.0, g / 255.0, b / 255.0, a / 255.0};
}

} // namespace

TEST(HexColour, Reads) {
    struct {
        std::string_view text;
        RGBA colour;
    } table[] = {
        {"#F80", {1, 8 / 15.0, 0, 1}},
        {"#fF80", {1, 1, 8 / 15.0, 0}},
        {"#FF800112", bytes(255, 128, 1, 18)},
        // What cannot be scanned still counts, and what was scanned is one number.
        {"#12345z", bytes(1, 0x23, 0x45)},
        {"#1zz", {0, 0, 1 / 15.0, 1}},
        {"#0XF", {0, 0, 1, 1}},
        {"#0x12Fa", bytes(0, 0x12, 0xFA)},
        {"#0xz", {0, 0, 0, 1}},           // the number is the 0
        {"\r\n#F8", {0, 1, 8 / 15.0, 1}}, // a line end is one character
        {"# F8", {0, 1, 8 / 15.0, 1}},
        {"#F\xC3\xA9z", {0, 0, 1, 1}}, // so is an accented letter
        {std::string_view("#F\0z", 4), {0, 0, 1, 1}},
    };
    for (const auto& row : table)
        EXPECT_EQ(RGBA::make({.hexString = row.text}), row.colour) << row.text;
}

TEST(HexColour, IsAbsentAndOfAWrongCountPrintsWhy) {
    const auto expectAbsent = [](std::initializer_list<const char*> texts, const char* printed) {
        for (const char* text : texts) {
            testing::internal::CaptureStdout();
            EXPECT_EQ(RGBA::make({.hexString = text}), std::nullopt) << text;
            EXPECT_EQ(testing::internal::GetCapturedStdout(), printed) << text;
        }
    };
    expectAbsent({"", "FF8000", "#", "# ", "#xyz", "#+F80", "##FF80", "\xC2\xA0#F80"}, "");
    expectAbsent({"#FF", "#FF800", "#FF80000", "#FF8000800", " #FF8000", "#FF8000 "},
                 "Invalid hex string, number of chars after '#' should be either 3, 4, 6 or 8\n");
}

TEST(HexColour, Writes) {
    struct {
        RGBA colour;
        const char* text;
    } table[] = {
        {{1, 0.5, 0, 0.5}, "#FF7F007F"},
        {{1, 1, 1, std::nextafter(1.0, 0.0)}, "#FFFFFFFE"},
        {{1, 1, 1, std::nextafter(1.0, 2.0)}, "#FFFFFFFF"},
        {{2, 256, 17, 1}, "#1FEFF0010EF"},
        {{-1 / 255.0, 0, -0.001, 1}, "#FFFFFFFF0000"},
        {{NAN, INFINITY, -INFINITY, NAN}, "#00FFFFFFFF0000"},
    };
    for (const auto& row : table)
        EXPECT_EQ(row.colour.hexString(), row.text);
}

TEST(HexColour, EveryByteSurvivesARoundTrip) {
    std::mt19937 random(9);
    for (int i = 0; i < 50000; ++i) {
        const auto byte = [&random] { return static_cast<int>(random() & 255); };
        const RGBA colour = bytes(byte(), byte(), byte(), byte());
        ASSERT_EQ(RGBA::make({.hexString = colour.hexString()}), colour) << colour.hexString();
    }
}

TEST(ColourText, ComponentsInTheOrderOfTheName) {
    EXPECT_EQ(RGBA({.r = 0.25, .g = 0.5, .b = 0.75, .a = 1}).description(),
              "RGBA(0.25, 0.5, 0.75, 1.0)");
    EXPECT_EQ(HSBA(0.1, 0.2, 0.3, NAN).description(), "HSBA(0.1, 0.2, 0.3, nan)");
    EXPECT_EQ(HSLA::white.description(), "HSLA(0.0, 0.0, 1.0, 1.0)");
    EXPECT_EQ(CMYKA::clear.description(), "CMYKA(0.0, 0.0, 0.0, 1.0, 0.0)");
}

TEST(RGBA, StoresBlueBeforeGreen) {
    static_assert(offsetof(RGBA, b) < offsetof(RGBA, g));
    const auto [r, b, g, a] = RGBA(0.1, 0.2, 0.3, 0.4);
    EXPECT_THAT((std::array{r, g, b, a}), ElementsAre(0.1, 0.2, 0.3, 0.4));
}
