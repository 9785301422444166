#include <tests/Testing.h>

#include "Examples.h"
#include <tests/bytesOf.h>

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/settings/JSON.h>
#include <zorvan/settings/JSONCoding.h>

#include <clocale>

namespace {

JSON parsed(std::string_view text) { return JSON::parse(std::as_bytes(std::span(text))); }

std::string written(const JSON& value) { return textOf(value.text()); }

template <class T>
void keeps(const T& value, const std::string& text) {
    EXPECT_EQ(written(JSONCoding<T>::encode(value)), text);
    EXPECT_EQ(JSONCoding<T>::decode(parsed(text)), value);
}

template <class T>
std::string refusal(std::string_view text) {
    try {
        JSONCoding<T>::decode(parsed(text));
        return "";
    } catch (const JSONError& error) {
        return error.what();
    }
}

} // namespace

TEST(JSONCoding, KeepsWhatItKnows) {
    keeps(std::numeric_limits<std::int64_t>::min(), "-9223372036854775808");
    keeps(std::numeric_limits<std::uint64_t>::max(), "18446744073709551615");
    keeps(std::uint64_t{5}, "5");
    keeps(std::string("\n\u00e9"), "\"\\n\u00e9\"");
    keeps(std::chrono::sys_days(std::chrono::year(2001) / 1 / 1) +
              std::chrono::nanoseconds(536'824'197),
          "0.536824197");
    for (const Date date : {Date::min(), Date::max(), Date()})
        EXPECT_EQ(JSONCoding<Date>::decode(parsed(written(JSONCoding<Date>::encode(date)))), date);
    EXPECT_EQ(JSONCoding<std::uint64_t>::decode(parsed("1e19")), 10'000'000'000'000'000'000u);
    keeps(Data{std::byte{0}, std::byte{0xFF}, std::byte{0x10}, std::byte{0x83}}, "\"AP8Qgw==\"");
    keeps(*URL::make({.string = "https://a.b/c"}), "\"https://a.b/c\"");
    keeps(std::optional<int>(), "null");
    keeps(std::vector<std::optional<int>>{1, {}}, "[1,null]");
    keeps(std::map<std::string, int>{{"b", 1}, {"a", 2}}, R"({"a":2,"b":1})");
    keeps(std::map<int, std::string>{{1, "x"}}, R"([1,"x"])");
    keeps(Level{6}, "6");
}

TEST(JSONCoding, RefusesOtherTypes) {
    EXPECT_EQ(refusal<bool>("1"), "there is no truth value");
    EXPECT_EQ(refusal<int>("1.5"), "there is no integer");
    EXPECT_EQ(refusal<int>("3.0"), "");
    EXPECT_EQ(refusal<std::int8_t>("128"), "an integer does not fit its type");
    EXPECT_EQ(refusal<unsigned>("-1"), "an integer does not fit its type");
    EXPECT_EQ(refusal<std::int64_t>("9223372036854775808"), "an integer does not fit its type");
    EXPECT_EQ(refusal<float>("-1e39"), "a number does not fit its type");
    EXPECT_EQ(refusal<double>("\"1\""), "there is no number");
    EXPECT_EQ(refusal<std::string>("null"), "there is no text");
    EXPECT_EQ(refusal<std::vector<int>>("{}"), "there is no array");
    EXPECT_EQ(refusal<Window>("[]"), "there is no object");
    EXPECT_EQ(refusal<Window>("{}"), "there is no text"); // the first field that has to be there
    EXPECT_EQ((refusal<std::map<int, int>>("[1]")), "a key has no value");
    EXPECT_EQ(refusal<Letter>("\"c\""), "a raw value stands for nothing");
    EXPECT_EQ(refusal<Level>("7"), "a raw value stands for nothing");
    EXPECT_EQ(refusal<URL>("\"x\""), "a text is no URL");
    EXPECT_EQ(refusal<Data>("\"a\""), "data is not in base 64");
    EXPECT_EQ(refusal<Data>("\"====\""), "data is not in base 64");
    for (const char* seconds : {"1e300", "-1.1e10", "8.3e9"})
        EXPECT_EQ(refusal<Date>(seconds), "a date is out of range");
}

TEST(JSON, RefusesWhatItCannotReadOrWrite) {
    for (const char* text : {"", "[", "[1,]", "{\"a\"}", "\"\xFF\"", "nul", "1 2", "{} x", "1e999"})
        EXPECT_THROW(parsed(text), JSONError) << text;
    EXPECT_THROW(parsed(std::string_view("1\0 2", 4)), JSONError);
    const std::string deep(JSON::maximumDepth, '['), ends(JSON::maximumDepth, ']');
    EXPECT_NO_THROW(parsed(deep + '0' + ends).text());
    EXPECT_THROW(JSON(JSON::Array{parsed(deep + ends)}).text(), JSONError);
    EXPECT_THROW(parsed("[" + deep), JSONError);
    EXPECT_THROW(parsed(std::string(1'000'000, '[')), JSONError);
    EXPECT_THROW(JSON(std::numeric_limits<double>::quiet_NaN()).text(), JSONError);
    EXPECT_THROW(JSON("\xC3").text(), JSONError);
    EXPECT_EQ(parsed(R"({"a":1,"a":2})"), JSON(JSON::Object{{"a", std::int64_t{2}}}));
    EXPECT_EQ(parsed("18446744073709551616"), JSON(18446744073709551616.0));
}

TEST(JSON, DoesNotDependOnTheLocale) {
    for (const char* name : {"de_DE.UTF-8", "ps_AF.UTF-8", "C"}) {
        std::setlocale(LC_ALL, name); // has no effect where the machine does not know it
        EXPECT_EQ(parsed("[1.75,-2.5e-3]"), JSON(JSON::Array{1.75, -0.0025}));
        EXPECT_EQ(written(JSON(1.75)), "1.75");
    }
}
