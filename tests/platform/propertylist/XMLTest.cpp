#include "Lists.h"
#include <tests/Testing.h>
#include <tests/bytesOf.h>

using propertylist::Format;

namespace {

std::string plist(const std::string& content) { return "<plist>" + content + "</plist>"; }

} // namespace

TEST(XML, IsReadable) {
    const PropertyList list = PropertyList::Dictionary{
        {"a", PropertyList::Array{1, 2.5, true, "x & y"}}, {"b", PropertyList::Dictionary{}}};
    EXPECT_EQ(textOf(*propertylist::encode(list, Format::xml)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
              "\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t\t<real>2.5</real>\n"
              "\t\t<true/>\n\t\t<string>x &amp; y</string>\n\t</array>\n"
              "\t<key>b</key>\n\t<dict/>\n</dict>\n</plist>\n");
}

TEST(XML, ReadsWhatOthersWrite) {
    const std::pair<std::string, PropertyList> table[] = {
        {"<?xml version='1.0'?><!DOCTYPE plist SYSTEM 'list.dtd'><plist "
         "version='1.0'><true/></plist>",
         true},
        {plist("<!-- one --><integer> +0x1F\n</integer>"), 31},
        {plist("<integer>18446744073709551615</integer>"), ~std::uint64_t{0}},
        {plist("<real>+1e3</real>"), 1000.0},
        {plist("<string> kept&#x20;<![CDATA[<as>]]> it is </string>"), " kept <as> it is "},
        {plist("<data>\n\tAA EC\n\tAw==\n</data>"),
         Data{std::byte{0}, std::byte{1}, std::byte{2}, std::byte{3}}},
        {plist("<date>2001-02-03T04:05:06Z</date>"),
         Date(std::chrono::sys_days(std::chrono::year(2001) / 2 / 3) +
              std::chrono::seconds(14706))},
        {plist("<date>0001-01-01T00:00:00Z</date>"), Date::min()},
        {plist("<date>4001-01-01T00:00:00Z</date>"), Date::max()},
        {plist("<dict><key>a</key><false></false><key>a</key><integer>2</integer></dict>"),
         PropertyList::Dictionary{{"a", 2}}},
        {"<?xml version='1.0' encoding='ISO-8859-1'?>" + plist("<string>\xE9</string>"), "\u00E9"},
    };
    for (const auto& [document, value] : table) {
        std::string reason;
        EXPECT_EQ(decoded(document, &reason), value) << document << ": " << reason;
    }
}

TEST(XML, TakesAsLongForOneCommentAsForMany) {
    const auto timeOf = [](std::size_t count) {
        std::string document = "<plist>";
        for (std::size_t i = 0; i < count; ++i)
            document += "<!--" + std::string((std::size_t{48} << 20) / count, 'x') + "-->";
        document += "<true/></plist>";
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(decoded(document), PropertyList(true));
        return std::chrono::steady_clock::now() - start;
    };
    EXPECT_LT(timeOf(1), 4 * timeOf(480));
}

TEST(XML, SaysWhatIsWrong) {
    const std::pair<std::string, std::string> table[] = {
        {"", "no element found"},
        {"<html/>", "it is no property list"},
        {plist(""), "it is empty"},
        {plist("<true/><true/>"), "there is more than one value"},
        {plist("<array>text</array>"), "there is text where none belongs"},
        {plist("<true>text</true>"), "there is text where none belongs"},
        {plist("<set/>"), "there is an unknown element"},
        {plist("<string><true/></string>"), "there is an element within a value"},
        {plist("<dict><key>a</key><key>b</key></dict>"), "a key stands where none belongs"},
        {plist("<dict><array/></dict>"), "a value has no key"},
        {plist("<dict><key>a</key></dict>"), "a key has no value"},
        {plist("<integer>--1</integer>"), "an integer cannot be read"},
        {plist("<integer>18446744073709551616</integer>"), "an integer cannot be read"},
        {plist("<integer>-9223372036854775809</integer>"), "an integer cannot be read"},
        {plist("<real>1e999</real>"), "a real cannot be read"},
        {plist("<date>2001-02-30T00:00:00Z</date>"), "a date cannot be read"},
        {plist("<date>2001-02-03T24:00:00Z</date>"), "a date cannot be read"},
        {plist("<date>2001-02-03T04:05:6</date>"), "a date cannot be read"},
        {plist("<data>AAE=C</data>"), "data is not in base 64"},
        {plist("<data>AAEC=</data>"), "data is not in base 64"},
        {plist("<data>AAE==</data>"), "data is not in base 64"},
        {plist("<data>A</data>"), "data is not in base 64"},
        {plist("<string>\xFF</string>"), "not well-formed (invalid token)"},
        {"<!DOCTYPE plist [<!ENTITY a 'aaaa'>]>" + plist("<string>&a;</string>"),
         "it has entities of its own"},
        {"<!DOCTYPE plist SYSTEM 'list.dtd'>" + plist("<integer>1&zero;0</integer>"),
         "it has an unknown entity"},
        {"<!DOCTYPE plist [<!ATTLIST true a CDATA 'b'>]>" + plist("<true/>"),
         "it has attributes of its own"},
    };
    for (const auto& [document, wanted] : table) {
        std::string reason;
        EXPECT_FALSE(decoded(document, &reason)) << document;
        EXPECT_EQ(reason, wanted) << document;
    }
}

TEST(XML, RefusesWhatItCannotHold) {
    std::string reason;
    EXPECT_FALSE(propertylist::encode(std::string("a\x01"), Format::xml, &reason));
    EXPECT_EQ(reason, "a text has a character that XML cannot hold");
    EXPECT_TRUE(propertylist::encode(std::string("a\x01"), Format::binary));
    // Of dates it keeps whole seconds.
    const Date half = Date{} - std::chrono::milliseconds(500);
    const auto bytes = propertylist::encode(half, Format::xml);
    EXPECT_EQ(propertylist::decode(*bytes), PropertyList(Date{} - std::chrono::seconds(1)));
}
