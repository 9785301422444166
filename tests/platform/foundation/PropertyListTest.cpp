#include <tests/Testing.h>

#include <zorvan/platform/foundation/PropertyList.h>

TEST(PropertyList, GivesWhatItHoldsWithoutADetour) {
    const PropertyList real(-2.5), large(std::numeric_limits<std::uint64_t>::max()), text("a"),
        truth(true), list(PropertyList::Array{1, "b"});
    EXPECT_EQ(real.as<double>(), -2.5);
    EXPECT_EQ(real.as<std::int64_t>(), -2);
    EXPECT_EQ(real.as<bool>(), true);
    EXPECT_EQ(large.as<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(truth.as<std::int64_t>(), 1);
    EXPECT_EQ(text.as<std::string_view>(), "a");
    EXPECT_EQ(text.as<double>(), std::nullopt); // a text is no number, nor the other way
    EXPECT_EQ(text.as<bool>(), std::nullopt);
    EXPECT_EQ(real.as<std::string_view>(), std::nullopt);
    EXPECT_EQ(list.as<std::int64_t>(), std::nullopt);
    EXPECT_EQ(list.as<std::string>(), nullptr);
    EXPECT_EQ(*text.as<std::string>(), "a");
}

TEST(PropertyList, GivesItselfAwayWhenItIsAboutToGo) {
    const auto made = [] {
        return PropertyList(PropertyList::Array{"a text too long to be kept in place"});
    };
    const auto list = made().as<PropertyList::Array>();
    ASSERT_TRUE(list);
    EXPECT_EQ(list->front().as<std::string_view>(), "a text too long to be kept in place");
    EXPECT_EQ(made().as<std::string>(), std::nullopt);
    EXPECT_EQ(PropertyList(7).as<std::int64_t>(), 7);
    PropertyList changing("a");
    *changing.as<std::string>() += "b";
    EXPECT_EQ(changing, PropertyList("ab"));
}
