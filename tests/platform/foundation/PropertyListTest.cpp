#include <tests/Testing.h>

#include <zorvan/platform/foundation/PropertyList.h>

TEST(NSNumber, ComparesAndConvertsByValue) {
    EXPECT_EQ(NSNumber(2.9).int64Value(), 2);
    EXPECT_EQ(NSNumber(0x1p63).int64Value(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(NSNumber(-1e300).int64Value(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(NSNumber(NAN).int64Value(), 0);
    EXPECT_EQ(NSNumber(true), NSNumber(1.0));
    // Two integers that share their nearest double are still different numbers.
    EXPECT_NE(NSNumber(std::int64_t{9007199254740993}), NSNumber(std::int64_t{9007199254740992}));
    EXPECT_NE(NSNumber(std::int64_t{9007199254740993}), NSNumber(0x1p53));
    EXPECT_NE(NSNumber(std::numeric_limits<std::int64_t>::max()), NSNumber(0x1p63));
    EXPECT_EQ(NSNumber(std::uint64_t{1} << 63), NSNumber(0x1p63));
    EXPECT_NE(NSNumber(std::numeric_limits<std::uint64_t>::max()), NSNumber(0x1p64));
}

TEST(PropertyList, GivesWhatItHoldsWithoutADetour) {
    const PropertyList real(-2.5), large(std::numeric_limits<std::uint64_t>::max()), text("a"),
        truth(true), list(PropertyList::Array{1, "b"});
    EXPECT_EQ(real.as<double>(), -2.5);
    EXPECT_EQ(real.as<std::int64_t>(), -2);
    EXPECT_EQ(large.as<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(truth.as<std::int64_t>(), 1);
    EXPECT_EQ(text.as<std::string_view>(), "a");
    EXPECT_EQ(text.as<double>(), std::nullopt); // a text is no number, nor the other way
    EXPECT_EQ(real.as<std::string_view>(), std::nullopt);
    EXPECT_EQ(list.as<std::string>(), nullptr);
}

TEST(PropertyList, GivesItselfAwayWhenItIsAboutToGo) {
    const std::string text = "a text too long to be kept in place";
    const auto made = [&] { return PropertyList(PropertyList::Array{text}); };
    const auto list = made().as<PropertyList::Array>();
    ASSERT_TRUE(list);
    EXPECT_EQ(list->front(), PropertyList(text));
    EXPECT_EQ(made().as<std::string>(), std::nullopt);
}

TEST(PropertyList, IsReplacedByAPartOfItself) {
    PropertyList list(PropertyList::Array{PropertyList::Array{42}, "text"});
    for (int depth = 0; depth < 2; ++depth)
        list = list.as<PropertyList::Array>()->front();
    EXPECT_EQ(list, PropertyList(42));
}
