#include "Store.h"

#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>

namespace {

class Keys : public Store {
protected:
    const EvaluedUserDefaultsKey<IntUDC> count{{.name = "Count", .value = 5}};
    const OptionalUserDefaultsKey<StringUDC> title{{.name = "Title"}};
    const OptionalUserDefaultsKey<StringUDC> name{{.name = "Name", .value = "nobody"}};
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(Keys, ReadTheDefaultAndTellOfEachWrite) {
    EXPECT_EQ(store()[count].value(), 5);
    EXPECT_EQ(store()[title].value(), std::nullopt);
    EXPECT_EQ(store()[name].value(), "nobody");
    EXPECT_EQ(told(), Names());
    store()[count] = 7;
    ASSERT_EQ(notes_.size(), 1u);
    EXPECT_EQ(notes_[0].name.rawValue(), "UserDefaultsDidSetKeyNotification");
    EXPECT_EQ(notes_[0].object, store_);
    ASSERT_TRUE(notes_[0].userInfo && notes_[0].userInfo->size() == 1);
    EXPECT_EQ(*notes_[0].value<std::string>("EditedKeyName"), "Count");
    store()[title] = "x";
    store()[name] = "me";
    reopen();
    const std::int64_t read = store()[count];
    EXPECT_EQ(read, 7);
    EXPECT_EQ(store()[name].value(), "me");
    store()[title] = std::nullopt;
    store()[name] = std::nullopt;
    EXPECT_FALSE(store().hasObjectForKey("Title"));
    EXPECT_EQ(store()[name].value(), "nobody");
    store()[count] += 3;
    store()[count] -= 1;
    store()[count].modify([](std::int64_t& value) { value *= 10; });
    EXPECT_EQ(store()[count].value(), 90);
    EXPECT_EQ(told(),
              (Names{"Count", "Title", "Name", "Title", "Name", "Count", "Count", "Count"}));
    store().setObject("99999999999999999999", "Count");
    store()[count] += 1;
    EXPECT_EQ(store()[count].value(), std::numeric_limits<std::int64_t>::max());
}

TEST_F(Keys, StayIntegersWhenRealsAreAdded) {
    using Limits = std::numeric_limits<std::int64_t>;
    const EvaluedUserDefaultsKey<UIntUDC> size({.name = "Size", .value = 3u});
    const std::pair<double, std::int64_t> table[] = {
        {1e300, Limits::max()}, {-1e300, Limits::min()}, {std::nan(""), 0}, {1.75, 8}};
    for (const auto& [added, sum] : table) {
        store()[count] = 7;
        store()[count] += added;
        EXPECT_EQ(store()[count].value(), sum) << added;
    }
    store()[size] -= 4.0;
    EXPECT_EQ(store()[size].value(), 0u);
}

TEST_F(Keys, AreSetOnlyWhenNothingIsThere) {
    int evaluated = 0;
    const auto expression = [&] { return std::int64_t{++evaluated}; };
    store().setObject("of another type", "Count");
    store().setIfNil(count, expression);
    store().setDefaultValue(count);
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(told(), Names());
    EXPECT_TRUE(store().hasValue(count));

    for (const bool isDefault : {false, true}) {
        store().removeObjectForKey("Count");
        EXPECT_FALSE(store().hasValue(count));
        for (int i = 0; i < 2; ++i)
            isDefault ? store().setDefaultValue(count) : store().setIfNil(count, expression);
        EXPECT_EQ(store().integerForKey("Count"), isDefault ? 5 : 1);
        EXPECT_EQ(told(), Names{"Count"});
    }
    EXPECT_EQ(evaluated, 1);

    store().setOptIfNil(title, std::optional<std::string>());
    EXPECT_FALSE(store().hasValue(title));
    store().setOptIfNil(title, "t");
    store().setOptIfNil(title, "u");
    EXPECT_EQ(store()[title].value(), "t");
    EXPECT_EQ(told(), (Names{"Title", "Title"}));
}

TEST_F(Keys, AreFoundInNotifications) {
    const EvaluedUserDefaultsKey<IntUDC> other({.name = "count", .value = 0});
    const auto note = [](std::optional<Notification::UserInfo> info) {
        return Notification(NSUserDefaults::didSetKeyNotification(), {}, std::move(info));
    };
    const auto edited = note(Notification::UserInfo{{"EditedKeyName", std::string("Count")}});
    EXPECT_EQ(NSUserDefaults::editedKeyName(edited), "Count");
    EXPECT_TRUE(NSUserDefaults::note(edited, {&other, &count}));
    EXPECT_FALSE(NSUserDefaults::note(edited, {&other})); // "count" is another name
    EXPECT_FALSE(
        NSUserDefaults::note(edited, std::span<const EvaluedUserDefaultsKey<IntUDC>* const>()));
    using Info = Notification::UserInfo;
    for (const std::optional<Info>& info :
         {std::optional<Info>(), std::optional(Info{{"EditedKeyName", 3}}),
          std::optional(Info{{"Other", std::string("Count")}})}) {
        EXPECT_EQ(NSUserDefaults::editedKeyName(note(info)), std::nullopt);
        EXPECT_FALSE(NSUserDefaults::note(note(info), {&count}));
    }
}
