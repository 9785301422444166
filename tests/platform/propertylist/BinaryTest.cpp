#include "Lists.h"
#include <tests/Testing.h>

using propertylist::Format;

namespace {

std::string bigEndian(std::uint64_t number, int size) {
    std::string bytes;
    for (int i = size; i-- > 0;)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

/// A binary list of the given objects, the first of which is the root.
std::string binary(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const std::size_t start = bytes.size();
    return bytes + table + std::string(6, '\0') + "\x04\x02" + bigEndian(objects.size(), 8) +
           bigEndian(0, 8) + bigEndian(start, 8);
}

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values)
        text += static_cast<char>(value);
    return text;
}

std::string array(const std::vector<int>& references) {
    std::string object = bytes({0xAF, 0x11}) + bigEndian(references.size(), 2);
    for (const int reference : references)
        object += bigEndian(static_cast<std::uint64_t>(reference), 2);
    return object;
}

} // namespace

TEST(Binary, ReadsEveryForm) {
    const std::pair<std::string, PropertyList> table[] = {
        {bytes({0x10, 0xFF}), 255}, // short integers have no sign
        {"\x14" + bigEndian(0, 8) + bigEndian(7, 8), 7},
        {"\x14" + bigEndian(0, 8) + bigEndian(~std::uint64_t{0}, 8), ~std::uint64_t{0}},
        {"\x14" + bigEndian(~std::uint64_t{0}, 8) + bigEndian(~std::uint64_t{0}, 8), -1},
        {bytes({0x22, 0x3F, 0x80, 0, 0}), 1.0},
        {"\x33" + bigEndian(0x7FF0000000000000, 8), Date::max()},
        {"\x33" + bigEndian(0xFFEFFFFFFFFFFFFF, 8), Date::min()},
        {"\x52\xC3\xA9", "\u00E9"},
        {bytes({0x64, 0x00, 0x7F, 0x00, 0x80, 0x07, 0xFF, 0x08, 0x00}), "\x7F\u0080\u07FF\u0800"},
        {bytes({0x63, 0xFF, 0xFD, 0xD8, 0x00, 0xDC, 0x00}), "\uFFFD\U00010000"},
        {bytes({0x62, 0xD8, 0x3D, 0xDE, 0x00}), "\U0001F600"},
        {bytes({0x62, 0xD8, 0x3D, 0x00, 0x41}), "\uFFFDA"}, // a lone surrogate
        {bytes({0x61, 0xDE, 0x00}), "\uFFFD"},
        {bytes({0x5F, 0x10, 0x02}) + "hi", "hi"}, // a long length, though a short one would do
    };
    for (const auto& [object, value] : table) {
        std::string reason;
        EXPECT_EQ(decoded(binary({object}), &reason), value) << reason;
    }
}

TEST(Binary, SaysWhatIsWrong) {
    const std::pair<std::string, std::string> table[] = {
        {"bplist00", "the file is cut short"},
        {binary({}), "an object is missing"},
        {binary({array({7})}), "an object is missing"},
        {binary({bytes({0x81, 0, 1})}), "an object is of a kind that property lists do not have"},
        {binary({bytes({0x15})}), "an integer does not fit 64 bits"},
        {binary({"\x14" + bigEndian(1, 8) + bigEndian(~std::uint64_t{0}, 8)}),
         "an integer does not fit 64 bits"},
        {binary({bytes({0x21, 0, 0})}), "a real is of no known size"},
        {binary({bytes({0x32, 0, 0, 0, 0})}), "a date is of no known size"},
        {binary({"\x33" + bigEndian(0x7FF8000000000000, 8)}), "a date is no number"},
        {binary({"\x55hi"}), "an object is cut short"},
        {binary({"\x6F\x13" + bigEndian(std::uint64_t{1} << 63, 8)}), "an object is cut short"},
        {binary({bytes({0x5F, 0x09})}), "a length is damaged"},
        {binary({"\x52\xFF\xFF"}), "a text is damaged"},
        {binary({bytes({0xD1, 0, 1, 0, 1}), bytes({0x10, 1})}), "a key is no text"},
        {binary({array({0})}), "the list unfolds to far more than its size"}, // holds itself
    };
    for (const auto& [document, wanted] : table) {
        std::string reason;
        EXPECT_FALSE(decoded(document, &reason));
        EXPECT_EQ(reason, wanted);
    }
}

TEST(Binary, HoldsBackWhatUnfolds) {
    // Eight levels of sixteen references each: four thousand million leaves.
    std::vector<std::string> levels;
    for (int level = 1; level <= 8; ++level)
        levels.push_back(array(std::vector<int>(16, level)));
    levels.push_back(bytes({0x09}));
    std::string reason;
    EXPECT_FALSE(decoded(binary(levels), &reason));
    EXPECT_EQ(reason, "the list unfolds to far more than its size");

    // One long text in many places.
    const std::string text = "\x5F\x12" + bigEndian(1 << 16, 4) + std::string(1 << 16, 'x');
    EXPECT_FALSE(decoded(binary({array(std::vector<int>(60000, 1)), text}), &reason));
    EXPECT_EQ(reason, "the list unfolds to far more than its size");
}

TEST(Binary, SharesEqualTexts) {
    PropertyList::Array rows;
    for (int i = 0; i < 1000; ++i)
        rows.emplace_back(PropertyList::Dictionary{{"a rather long key", "a rather long value"}});
    const auto written = propertylist::encode(rows, Format::binary);
    EXPECT_LT(written->size(), 12000u);
    EXPECT_EQ(propertylist::decode(*written), PropertyList(rows));
    // More texts than a byte refers to: all different, or too long to share.
    PropertyList::Array different, repeated(400, PropertyList(std::string(1 << 13, 'x')));
    for (int i = 0; i < 300; ++i)
        different.emplace_back(std::to_string(i));
    for (const PropertyList::Array& texts : {different, repeated})
        EXPECT_TRUE(propertylist::decode(*propertylist::encode(texts, Format::binary)) ==
                    PropertyList(texts));
}

// Near the start of 2001, where reals are finer than dates.
TEST(Binary, KeepsDatesToTheNanosecond) {
    const Date date =
        std::chrono::sys_days(std::chrono::year(2001) / 1 / 1) + 806'539'898'841'823ns;
    EXPECT_EQ(propertylist::decode(*propertylist::encode(date, Format::binary)),
              PropertyList(date));
}

TEST(Binary, SurvivesDamage) {
    const Data whole = *propertylist::encode(everyKind(), Format::binary);
    std::mt19937 random(1);
    for (int i = 0; i < 50000; ++i) {
        Data damaged = whole;
        for (int k = 0; k < 3; ++k)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        std::string reason;
        EXPECT_TRUE(propertylist::decode(damaged, &reason) || !reason.empty());
    }
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(propertylist::decode(std::span(whole).first(size)));
}
