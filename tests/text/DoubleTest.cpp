#include <zorvan/text/Double.h>

#include <zorvan/platform/textservices/Locale.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace zorvan;

TEST(Double, FormatsPercentForTheCurrentLocale) {
    // Halves go to the even neighbour.
    const struct {
        const char* locale;
        double value;
        std::string_view text;
    } cases[] = {
        {"en_US", 0.25, "25%"},      {"en_US", -0.5, "-50%"},          {"en_US", 0, "0%"},
        {"en_US", 12.345, "1,234%"}, {"en_US_POSIX", 12.34, "1,234%"}, {"en_US", 0.125, "12%"},
        {"tr_TR", 0.5, "%50"},       {"de_DE", 12.34, "1.234\u00A0%"}, {"ar_EG", 0.5, "٥٠٪\u061C"},
    };
    const Locale before = Locale::current();
    for (const auto& [locale, value, text] : cases) {
        Locale::setCurrent(Locale(locale));
        EXPECT_EQ(formatPercent(value), text) << locale << " " << value;
    }
    Locale::setCurrent(Locale("en_US"));
    EXPECT_EQ(formatPercent(1e300).size(), 404u); // 303 digits, 100 commas and the sign
    EXPECT_EQ(formatPercent(std::numeric_limits<double>::infinity()), "∞%");
    EXPECT_EQ(formatPercent(std::nan("")), "NaN%");
    Locale::setCurrent(before);
}
