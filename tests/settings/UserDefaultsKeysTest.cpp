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
    EXPECT_EQ(told(), Names());
    store()[count] = 7;
    ASSERT_EQ(notes_.size(), 1u);
    EXPECT_EQ(notes_[0].name.rawValue(), "UserDefaultsDidSetKeyNotification");
    EXPECT_EQ(notes_[0].object, store_);
    ASSERT_TRUE(notes_[0].userInfo && notes_[0].userInfo->size() == 1);
    EXPECT_EQ(*notes_[0].value<std::string>("EditedKeyName"), "Count");
    const std::int64_t read = store()[count];
    EXPECT_EQ(read, 7);
    reopen();
    EXPECT_EQ(store()[count].value(), 7);
}

TEST_F(Keys, RemoveWhatIsSetToAbsent) {
    EXPECT_EQ(store()[title].value(), std::nullopt);
    EXPECT_EQ(store()[name].value(), "nobody");
    store()[title] = "x";
    store()[name] = "me";
    EXPECT_EQ(store()[name].value(), "me");
    store()[title] = std::nullopt;
    store()[name] = std::nullopt;
    EXPECT_FALSE(store().hasObjectForKey("Title"));
    EXPECT_EQ(store()[name].value(), "nobody");
    EXPECT_EQ(told(), (Names{"Title", "Name", "Title", "Name"}));
}

TEST_F(Keys, ChangeInPlaceWithOneWrite) {
    store()[count] += 3;
    store()[count] -= 1;
    EXPECT_EQ(store()[count].value(), 7);
    store()[count].modify([](std::int64_t& value) { value *= 10; });
    EXPECT_EQ(store()[count].value(), 70);
    EXPECT_EQ(told().size(), 3u);
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
    EXPECT_EQ(store()[count].value(), 0); // as the store converts it

    store().removeObjectForKey("Count");
    EXPECT_FALSE(store().hasValue(count));
    store().setIfNil(count, expression);
    store().setIfNil(count, expression);
    EXPECT_EQ(evaluated, 1);
    EXPECT_EQ(told(), Names{"Count"});

    store().removeObjectForKey("Count");
    store().setDefaultValue(count);
    store().setDefaultValue(count);
    EXPECT_EQ(store().integerForKey("Count"), 5);
    EXPECT_EQ(told(), Names{"Count"});

    store().setOptIfNil(title, std::optional<std::string>());
    EXPECT_FALSE(store().hasValue(title));
    store().setOptIfNil(title, "t");
    store().setOptIfNil(title, "u");
    EXPECT_EQ(store()[title].value(), "t");
    EXPECT_EQ(told(), (Names{"Title", "Title"}));
}

TEST_F(Keys, TellAfterTheWrite) {
    std::int64_t seen = 0;
    const auto observer = NSNotificationCenter::defaultCenter()->addObserver(
        NSUserDefaults::didSetKeyNotification(), store_, {}, [&](const Notification&) {
            if (std::exchange(seen, store()[count].value()) == 0)
                store()[count] = 9; // tells again, of itself
        });
    store()[count] = 8;
    EXPECT_EQ(seen, 9);
    EXPECT_EQ(told().size(), 2u);
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
}

TEST_F(Keys, AreFoundInNotifications) {
    const EvaluedUserDefaultsKey<IntUDC> other({.name = "count", .value = 0});
    const auto note = [](std::optional<Notification::UserInfo> info) {
        return Notification(NSUserDefaults::didSetKeyNotification(), {}, std::move(info));
    };
    struct {
        std::optional<Notification::UserInfo> info;
        std::optional<std::string> name;
        bool isCount;
    } table[] = {
        {Notification::UserInfo{{"EditedKeyName", std::string("Count")}}, "Count", true},
        {Notification::UserInfo{{"EditedKeyName", std::string("count")}}, "count", false},
        {Notification::UserInfo{{"EditedKeyName", 3}}, std::nullopt, false},
        {Notification::UserInfo{{"Other", std::string("Count")}}, std::nullopt, false},
        {std::nullopt, std::nullopt, false},
    };
    for (const auto& row : table) {
        EXPECT_EQ(NSUserDefaults::editedKeyName(note(row.info)), row.name);
        EXPECT_EQ(NSUserDefaults::note(note(row.info), {&count}), row.isCount);
    }
    EXPECT_TRUE(NSUserDefaults::note(note(table[0].info), {&other, &count}));
    EXPECT_FALSE(NSUserDefaults::note(note(table[0].info),
                                      std::span<const EvaluedUserDefaultsKey<IntUDC>* const>()));
}

// A value that the coder cannot encode is told of all the same.
TEST_F(Keys, TellWhateverTheCoderDid) {
    struct Nothing {
        using CodableType = int;
        std::optional<int> decode(NSUserDefaults&, std::string_view) const { return std::nullopt; }
        void encode(std::optional<int>, NSUserDefaults&, std::string_view) const {}
    };
    static_assert(UserDefaultsCoder<Nothing> && UserDefaultsCoder<IntUDC> &&
                  !UserDefaultsCoder<int>);
    const EvaluedUserDefaultsKey<Nothing> key({.name = "N", .coder = Nothing(), .value = 1});
    store()[key] = 2;
    EXPECT_EQ(store()[key].value(), 1);
    EXPECT_EQ(told(), Names{"N"});
}
