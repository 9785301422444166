#include "Store.h"

#include <tests/platform/settingsdatabase/Processes.h>
#include <tests/waitUntil.h>

#include <zorvan/settings/JSONCodableUDC.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>

namespace {

class Travelling : public Store {
protected:
    using Texts = std::vector<std::string>;

    /// Lets another process do it.
    void elsewhere(const std::function<void(NSUserDefaults&)>& action) {
        EXPECT_TRUE(inChild([&] {
            action(*NSUserDefaults::create({.suiteName = "suite"}));
            return true;
        }));
    }
    /// What was told until it is so much, or in vain.
    Texts heard(std::size_t count) {
        waitUntil([&] { return heard_.size() >= count; });
        return std::exchange(heard_, {});
    }

    const EvaluedUserDefaultsKey<IntUDC> count{{.name = "count", .value = 5}};
    const OptionalUserDefaultsKey<StringUDC> title{{.name = "title"}};
    const EvaluedUserDefaultsKey<JSONCodableUDC<Texts>> files{{.name = "files", .value = Texts()}};
    Texts heard_;
};

} // namespace

TEST_F(Travelling, ModifiesInOneStep) {
    EXPECT_TRUE(store().modify(count, [](std::int64_t& value) { value *= 2; }));
    EXPECT_TRUE(store().modify(title, [](auto& text) { text = "t"; }));
    EXPECT_THAT(told(), ElementsAre("count", "title"));
    const auto both = [&](bool fails) {
        return [&, fails] {
            store()[count] += 1;
            store()[title] = std::nullopt;
            store().modify(files, [](auto& names) { names.push_back("f"); });
            EXPECT_THROW(store().transact([&] {
                store()[count] = 0;
                throw 1;
            }),
                         int);
            EXPECT_THAT(told(), IsEmpty());
            EXPECT_EQ(store().value(count), 11);
            if (fails)
                throw 2;
        };
    };
    EXPECT_THROW(store().transact(both(true)), int);
    EXPECT_EQ(store().value(count), 10);
    EXPECT_EQ(store().value(title), "t");
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_TRUE(store().transact(both(false)));
    EXPECT_THAT(told(), ElementsAre("count", "title", "files"));
    reopen();
    EXPECT_EQ(store().value(count), 11);
    EXPECT_EQ(store().value(title), std::nullopt);
    EXPECT_THAT(store().value(files), ElementsAre("f"));
}

TEST_F(Travelling, TellsEverybodyWhateverOneThrows) {
    const auto fails = NSNotificationCenter::defaultCenter()->addObserver(
        NSUserDefaults::didSetKeyNotification(), nullptr, nullptr,
        [](const Notification&) { throw 3; });
    EXPECT_THROW(store().transact([&] {
        store()[count] = 1;
        store()[title] = "u";
    }),
                 int);
    NSNotificationCenter::defaultCenter()->removeObserver(fails);
    EXPECT_THAT(told(), ElementsAre("count", "title"));
    reopen();
    EXPECT_EQ(store().value(count), 1);
}

TEST_F(Travelling, AValueWithoutAStoredFormLeavesWhatWas) {
    const OptionalUserDefaultsKey<JSONCodableUDC<double>> zoom{{.name = "zoom"}};
    store()[files] = Texts{"a.pdf"};
    store()[zoom] = 2.0;
    told();
    EXPECT_FALSE(store().modify(files, [](auto& names) { names.push_back("caf\xE9.pdf"); }));
    EXPECT_FALSE(store().modify(zoom, [](auto& value) { *value /= 0; }));
    EXPECT_TRUE(store().transact([&] {
        EXPECT_FALSE(store().modify(files, [](auto& names) { names = {"\xFF"}; }));
        store()[count] = 1;
    }));
    EXPECT_THAT(told(), ElementsAre("count"));
    reopen();
    EXPECT_THAT(store().value(files), ElementsAre("a.pdf"));
    EXPECT_EQ(store().value(zoom), 2.0);
    EXPECT_TRUE(store().modify(zoom, [](auto& value) { value.reset(); }));
    EXPECT_FALSE(store().hasValue(zoom));
}

TEST_F(Travelling, IsFollowedOnTheMainQueue) {
    std::size_t atFirst = 0;
    auto observation = store().follow([&](const Texts& keys) {
        atFirst = std::max(atFirst, heard_.empty() ? keys.size() : 0);
        heard_.insert(heard_.end(), keys.begin(), keys.end());
    });
    store()[count] = 1; // which is told by the notification
    elsewhere([&](NSUserDefaults& other) {
        other.transact([&] {
            other[title] = "t";
            other[count] = 2;
        });
        other[files] = Texts{"f"};
    });
    EXPECT_THAT(heard(3), ElementsAre("title", "count", "files"));
    EXPECT_GE(atFirst, 2u); // those of the transaction
    EXPECT_THAT(told(), ElementsAre("count"));
    observation->end();
    elsewhere([&](NSUserDefaults& other) { other[count] = 3; });
    EXPECT_EQ(store().value(count), 3);
    MainQueue::drain();
    EXPECT_THAT(heard(0), IsEmpty());
}

TEST_F(Travelling, IsObservedWithItsTypes) {
    store().registerDefaults({{"title", "registered"}});
    std::shared_ptr<SettingsObservation> counting, naming;
    {
        const EvaluedUserDefaultsKey<IntUDC> shortLived({.name = "count", .value = 5});
        counting = store().observe(shortLived, [&](std::int64_t before, std::int64_t after) {
            heard_.push_back(std::to_string(before) + ' ' + std::to_string(after));
            if (after == 9)
                counting.reset();
        });
    }
    naming = store().observe(title, [&](const auto& before, const auto& after) {
        heard_.push_back(before.value_or("-") + ' ' + after.value_or("-"));
    });
    elsewhere([&](NSUserDefaults& other) { other[count] = 7; });
    EXPECT_THAT(heard(1), ElementsAre("5 7"));
    store()[count] = 8;
    elsewhere([&](NSUserDefaults& other) { other[count] = 9; });
    EXPECT_THAT(heard(1), ElementsAre("8 9"));
    elsewhere([&](NSUserDefaults& other) {
        other[count] = 10; // no longer observed
        other[title] = "t";
    });
    EXPECT_THAT(heard(1), ElementsAre("registered t"));
    elsewhere([&](NSUserDefaults& other) { other[title] = std::nullopt; });
    EXPECT_THAT(heard(1), ElementsAre("t registered"));
}
