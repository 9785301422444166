#include <tests/Testing.h>
#include <tests/randomText.h>

#include <zorvan/platform/textservices/Collation.h>
#include <zorvan/platform/textservices/NumberFormat.h>

#include <unicode/ucol.h>

using enum ComparisonResult;

namespace {

ComparisonResult byICU(const UCollator* collator, std::string_view a, std::string_view b) {
    UErrorCode status = U_ZERO_ERROR;
    return static_cast<ComparisonResult>(
        ucol_strcollUTF8(collator, a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                         static_cast<std::int32_t>(b.size()), &status));
}

} // namespace

// The comparison decides most pairs without the collator; it must never decide them otherwise.
TEST(Collation, FastPathAgreesWithTheCollatorInEveryLocale) {
    constexpr std::array<std::string_view, 30> pieces = {
        "a",  "A",  "b",         "Z",  "ch",   "l",    "·", "\u0301", "0",  "00",
        "7",  "12", "123456789", " ",  "-",    "_",    ".", "(",      ")",  "\t",
        "\1", "é",  "ß",         "ll", "\xFF", "\xC3", "í", "中",     "dz", "aa"};
    for (const char* identifier : {"en", "de", "cs", "es", "hr", "hu", "da", "th", "ja", "zh", "sv",
                                   "cy", "vi", "lt", "tr", "de@collation=phonebook", "root"}) {
        const Locale locale(identifier);
        UErrorCode status = U_ZERO_ERROR;
        UCollator* collator = ucol_open(identifier, &status);
        ucol_setStrength(collator, UCOL_PRIMARY);
        ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
        std::mt19937 random(3);
        for (int round = 0; round < 10000; ++round) {
            const std::string common = randomText(random, pieces, 3);
            const std::string a = common + randomText(random, pieces, 4);
            const std::string b = common + randomText(random, pieces, 4);
            ASSERT_EQ(compareNames(a, b, locale), byICU(collator, a, b))
                << identifier << ": " << testing::PrintToString(a) << " | "
                << testing::PrintToString(b);
        }
        for (const std::size_t digits : {253u, 254u, 255u, 600u}) {
            const std::string a = "n" + std::string(digits, '1');
            const std::string b = "n" + std::string(digits, '1') + "0";
            ASSERT_EQ(compareNames(a, b, locale), byICU(collator, a, b)) << digits;
        }
        ucol_close(collator);
    }
}

// Also with digits of other scripts, which the collators of some locales compare otherwise.
TEST(Collation, SortsAsItCompares) {
    const std::vector<std::vector<std::string>> alphabets = {
        {"a", "B", "b", " ", "-", "\1", "0", "00", "7", "12", std::string(254, '9')},
        {"a", "B", "-", "0", "12", "é", "\u0301", "ß", "\xFF", "中", "ch", "２", "１"},
        {"a", "1", std::string(255, '9'), std::string(3000, 'x')}};
    std::mt19937 random(5);
    for (const char* identifier : {"en", "cs", "zh", "root"})
        for (const auto& alphabet : alphabets) {
            const Locale locale(identifier);
            std::vector<std::string> texts(300);
            for (std::string& text : texts)
                text = randomText(random, alphabet, 4);
            const std::vector<std::string_view> names(texts.begin(), texts.end());
            std::vector<std::size_t> expected(names.size());
            std::iota(expected.begin(), expected.end(), std::size_t{0});
            std::sort(expected.begin(), expected.end(), [&](std::size_t a, std::size_t b) {
                const ComparisonResult order = compareNames(names[a], names[b], locale);
                return order == orderedSame ? a < b : order == orderedAscending;
            });
            EXPECT_EQ(orderOfNames(names, locale), expected) << identifier;
        }
    EXPECT_TRUE(orderOfNames({}).empty());
}

TEST(Collation, FollowsTheLocale) {
    EXPECT_EQ(compareNames("a", "B", Locale("en_US_POSIX")), orderedAscending);
    EXPECT_EQ(compareNames("b", "a", Locale("no such locale")), orderedDescending);
    // Many in turn keep the current one.
    for (const char* identifier : {"sv", "de", "fr", "it", "pl", "nl", "pt", "fi", "da", "ro"}) {
        EXPECT_EQ(compareNames("a", "b", Locale(identifier)), orderedAscending);
        EXPECT_EQ(compareNames("file2", "file10"), orderedAscending);
    }
}

TEST(Collation, CurrentLocaleChangesInEveryThread) {
    const Locale before = Locale::current();
    EXPECT_EQ(compareNames("Öl", "Zebra"), orderedAscending);
    std::atomic<int> step{0};
    std::thread other([&] {
        EXPECT_EQ(compareNames("Öl", "Zebra"), orderedAscending);
        step = 1;
        step.notify_one();
        step.wait(1);
        EXPECT_EQ(compareNames("Öl", "Zebra"), orderedDescending);
        EXPECT_EQ(percentText(0.5), "50\u00A0%");
    });
    step.wait(0);
    Locale::setCurrent(Locale("sv"));
    step = 2;
    step.notify_one();
    other.join();
    EXPECT_EQ(compareNames("Öl", "Zebra"), orderedDescending);
    Locale::setCurrent(before);
}
