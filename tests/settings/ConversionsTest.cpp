#include "Store.h"

namespace {

using Texts = std::optional<std::vector<std::string>>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr std::int64_t top = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t bottom = std::numeric_limits<std::int64_t>::min();

class Conversions : public Store {};

} // namespace

// The table of the guide page, whole: each kind through each getter.
TEST_F(Conversions, OfEveryKind) {
    const Date date{std::chrono::seconds(5)};
    const Data data{std::byte{0x31}};
    const std::string zeros(400, '0');
    const PropertyList::Array array{"1"}, mixed{"1", 1};
    const PropertyList::Dictionary dictionary{{"1", 1}};
    struct Row {
        std::optional<PropertyList> stored;
        bool truth;
        std::int64_t integer;
        double real;
        std::optional<std::string> text;
    } table[] = {
        {std::nullopt, false, 0, 0, std::nullopt},
        {true, true, 1, 1, "1"},
        {false, false, 0, 0, "0"},
        {0, false, 0, 0, "0"},
        {top, true, top, 9223372036854775807.0, "9223372036854775807"},
        {~std::uint64_t{0}, true, top, 18446744073709551615.0, "18446744073709551615"},
        {0.0, false, 0, 0, "0"},
        {-0.5, true, 0, -0.5, "-0.5"},
        {0.1, true, 0, 0.1, "0.1"},
        {-1e300, true, bottom, -1e300, "-1e+300"},
        {"", false, 0, 0, ""},
        {" \t-42.75 apples", true, -42, -42.75, " \t-42.75 apples"},
        {"+0012", true, 12, 12, "+0012"},
        {"1e3", true, 1, 1000, "1e3"},
        {"1,5", true, 1, 1, "1,5"},
        {"YES", true, 0, 0, "YES"},
        {"t", true, 0, 0, "t"},
        {"NO", false, 0, 0, "NO"},
        {" -0y", true, 0, 0, " -0y"},
        {"inf", false, 0, 0, "inf"},
        {"--1", false, 0, 0, "--1"},
        {"99999999999999999999", true, top, 1e20, "99999999999999999999"},
        {"-99999999999999999999", true, bottom, -1e20, "-99999999999999999999"},
        {"-9223372036854775808", true, bottom, -9223372036854775808.0, "-9223372036854775808"},
        {"1e999", true, 1, inf, "1e999"},
        {"1e-999", true, 1, 0, "1e-999"},
        {"1e99999999999999999999", true, 1, inf, "1e99999999999999999999"},
        {"1e-99999999999999999999", true, 1, 0, "1e-99999999999999999999"},
        {"0." + zeros + "1e405", false, 0, 1e4, "0." + zeros + "1e405"},
        {"0." + zeros + "1e+800", false, 0, inf, "0." + zeros + "1e+800"},
        {"1" + zeros + ".5E-5", true, top, inf, "1" + zeros + ".5E-5"},
        {"1" + zeros + "e-800", true, top, 0, "1" + zeros + "e-800"},
        {date, false, 0, 0, std::nullopt},
        {data, false, 0, 0, std::nullopt},
        {array, false, 0, 0, std::nullopt},
        {dictionary, false, 0, 0, std::nullopt},
    };
    for (const Row& row : table) {
        store().setObject(row.stored, "k");
        reopen();
        const std::string name = row.text.value_or("no text");
        EXPECT_EQ(store().boolForKey("k"), row.truth) << name;
        EXPECT_EQ(store().integerForKey("k"), row.integer) << name;
        EXPECT_EQ(store().doubleForKey("k"), row.real) << name;
        EXPECT_EQ(store().floatForKey("k"), static_cast<float>(row.real)) << name;
        EXPECT_EQ(store().stringForKey("k"), row.text);
        EXPECT_EQ(store().hasObjectForKey("k"), row.stored.has_value());
        EXPECT_EQ(store().dataForKey("k").has_value(), row.stored == PropertyList(data));
        EXPECT_EQ(store().date("k").has_value(), row.stored == PropertyList(date));
        EXPECT_EQ(store().arrayForKey("k").has_value(), row.stored == PropertyList(array));
        EXPECT_EQ(store().dictionaryForKey("k").has_value(),
                  row.stored == PropertyList(dictionary));
        EXPECT_EQ(store().stringArrayForKey("k"),
                  row.stored == PropertyList(array) ? Texts({{"1"}}) : std::nullopt);
    }
    store().setObject(mixed, "k");
    EXPECT_EQ(store().stringArrayForKey("k"), std::nullopt);
    store().setObject(std::numeric_limits<double>::quiet_NaN(), "k");
    EXPECT_TRUE(store().boolForKey("k"));
    EXPECT_EQ(store().integerForKey("k"), 0);
    EXPECT_TRUE(std::isnan(store().doubleForKey("k")));
}

TEST_F(Conversions, OfURLs) {
    ::setenv("HOME", "/home/me", 1);
    const auto url = [&](const PropertyList& stored) {
        store().setObject(stored, "k");
        const auto read = store().URLForKey("k");
        return read ? std::optional(read->absoluteString()) : std::nullopt;
    };
    EXPECT_EQ(url("https://example.com/a?b"), "https://example.com/a?b");
    EXPECT_EQ(url("/a b"), "file:///a%20b");
    EXPECT_EQ(url("~/x"), "file:///home/me/x");
    EXPECT_EQ(url("~"), "file:///home/me");
    for (const PropertyList& none : {PropertyList("~other/x"), PropertyList("no scheme"),
                                     PropertyList(std::string("/a\0b", 4)), PropertyList(1)})
        EXPECT_EQ(url(none), std::nullopt);
}
