#include <tests/Testing.h>

#include "Examples.h"

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/settings/JSON.h>
#include <zorvan/settings/JSONCoding.h>

namespace {

JSON parsed(std::string_view text) { return JSON::parse(std::as_bytes(std::span(text))); }

std::string written(const JSON& value) {
    const Data text = value.text();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

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
    keeps(true, "true");
    keeps(-5, "-5");
    keeps(std::uint8_t{255}, "255");
    keeps(std::numeric_limits<std::int64_t>::min(), "-9223372036854775808");
    keeps(std::numeric_limits<std::uint64_t>::max(), "18446744073709551615");
    keeps(0.1, "0.1");
    keeps(2.0, "2.0");
    keeps(std::string("\n\u00e9"), "\"\\n\u00e9\"");
    keeps(Date(std::chrono::sys_days(std::chrono::year(2001) / 1 / 2)), "86400.0");
    keeps(Data{std::byte{0}, std::byte{0xFF}, std::byte{0x10}, std::byte{0x83}}, "\"AP8Qgw==\"");
    keeps(Data(), "\"\"");
    keeps(*URL::make({.string = "https://a.b/c"}), "\"https://a.b/c\"");
    keeps(std::optional<int>(), "null");
    keeps(std::vector<std::optional<int>>{1, {}}, "[1,null]");
    keeps(std::map<std::string, int>{{"b", 1}, {"a", 2}}, R"({"a":2,"b":1})");
    keeps(std::map<int, std::string>{{1, "x"}}, R"([1,"x"])");
    keeps(Letter::a, "\"a\"");
    keeps(Level(6), "6");
}

TEST(JSONCoding, RefusesOtherTypes) {
    struct {
        std::string expected, actual;
    } table[] = {
        {"there is no truth value", refusal<bool>("1")},
        {"there is no integer", refusal<int>("1.5")},
        {"there is no integer", refusal<int>("true")},
        {"", refusal<int>("3.0")},
        {"an integer does not fit its type", refusal<std::int8_t>("128")},
        {"an integer does not fit its type", refusal<unsigned>("-1")},
        {"an integer does not fit its type", refusal<std::int64_t>("9223372036854775808")},
        {"a number does not fit its type", refusal<float>("-1e39")},
        {"there is no number", refusal<double>("\"1\"")},
        {"there is no text", refusal<std::string>("1")},
        {"there is no text", refusal<std::string>("null")},
        {"there is no array", refusal<std::vector<int>>("{}")},
        {"there is no object", refusal<Window>("[]")},
        {"there is no text", refusal<Window>("{}")}, // the first field that has to be there
        {"a key has no value", (refusal<std::map<int, int>>("[1]"))},
        {"a raw value stands for nothing", refusal<Letter>("\"c\"")},
        {"a raw value stands for nothing", refusal<Level>("7")},
        {"a text is no URL", refusal<URL>("\"x\"")},
        {"data is not in base 64", refusal<Data>("\"a\"")},
        {"data is not in base 64", refusal<Data>("\"====\"")},
        {"data is not in base 64", refusal<Data>("\"a=bc\"")},
        {"a date is out of range", refusal<Date>("1e300")},
    };
    for (const auto& row : table)
        EXPECT_EQ(row.actual, row.expected);
}

TEST(JSON, RefusesWhatItCannotReadOrWrite) {
    for (const char* text : {"", "[", "[1,]", "{\"a\"}", "\"\xFF\"", "nul", "1 2", "{} x"})
        EXPECT_THROW(parsed(text), JSONError) << text;
    EXPECT_THROW(parsed("1e999"), JSONError);
    const std::string deep(JSON::maximumDepth, '[');
    EXPECT_NO_THROW(parsed(deep + std::string(JSON::maximumDepth, ']')));
    EXPECT_THROW(parsed("[" + deep), JSONError);
    EXPECT_THROW(parsed(std::string(1'000'000, '[')), JSONError);
    JSON nested;
    for (std::size_t i = 0; i <= JSON::maximumDepth; ++i)
        nested = JSON::Array{std::move(nested)};
    EXPECT_THROW(nested.text(), JSONError);
    EXPECT_THROW(JSON(std::numeric_limits<double>::quiet_NaN()).text(), JSONError);
    EXPECT_THROW(JSON("\xC3").text(), JSONError);
    EXPECT_EQ(parsed(R"({"a":1,"a":2})"), JSON(JSON::Object{{"a", std::int64_t{2}}}));
    EXPECT_EQ(parsed("18446744073709551616"), JSON(18446744073709551616.0));
}
