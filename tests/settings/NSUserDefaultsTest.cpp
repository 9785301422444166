#include "Store.h"

#include <tests/platform/settingsdatabase/Processes.h>

#include <zorvan/platform/propertylist/PropertyListFile.h>
#include <zorvan/settings/NumberCoders.h>

namespace {

class Defaults : public Store {};

std::span<const std::byte> bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

} // namespace

TEST_F(Defaults, KeepDomainsApart) {
    const auto other = NSUserDefaults::create({.suiteName = "other"});
    store().setInteger(1, "k");
    other->setInteger(2, "k");
    EXPECT_EQ(store().integerForKey("k"), 1);
    EXPECT_EQ(NSUserDefaults::create({.suiteName = "other"})->integerForKey("k"), 2); // shared
    store().removePersistentDomainForName("other");
    EXPECT_FALSE(other->hasObjectForKey("k"));
    EXPECT_EQ(store().integerForKey("k"), 1);
    EXPECT_FALSE(NSUserDefaults::create({.suiteName = ""}));
    EXPECT_EQ(told(), std::vector<std::string>());
}

TEST_F(Defaults, FallBackToWhatIsRegistered) {
    store().registerDefaults({{"a", 1}, {"b", 1}});
    store().registerDefaults({{"b", 2}});
    store().setInteger(9, "a");
    EXPECT_EQ(store().integerForKey("a"), 9);
    EXPECT_EQ(store().integerForKey("b"), 2);
    EXPECT_EQ(store().dictionaryRepresentation(), (PropertyList::Dictionary{{"a", 9}, {"b", 2}}));
    store().removeObjectForKey("a");
    EXPECT_EQ(store().integerForKey("a"), 1);
    reopen();
    EXPECT_FALSE(store().hasObjectForKey("b")); // never stored
}

// The program that runs these tests has no bundle.
TEST_F(Defaults, ClearNothingWithoutAnIdentifier) {
    const auto own = NSUserDefaults::create();
    EXPECT_EQ(own->domainName(), "settings-test");
    own->setInteger(1, "k");
    own->clearAllData();
    EXPECT_EQ(own->integerForKey("k"), 1);
}

TEST_F(Defaults, TravelAsXML) {
    const PropertyList::Dictionary values{
        {"text", "a<b"}, {"truth", true}, {"list", PropertyList::Array{0.1, ~std::uint64_t{0}}}};
    store().setInteger(1, "old");
    store().setInteger(1, "text");
    store().setPersistentDomain(values, "suite");
    EXPECT_EQ(store().persistentDomainForName("suite"), values);
    const auto xml = store().exportedXML();
    ASSERT_TRUE(xml);
    const auto other = NSUserDefaults::create({.suiteName = "other"});
    other->setInteger(1, "stays");
    other->setInteger(1, "text");
    ASSERT_TRUE(other->importPropertyList(*xml));
    PropertyList::Dictionary expected = values;
    expected.emplace("stays", 1);
    EXPECT_EQ(other->dictionaryRepresentation(), expected);
    EXPECT_TRUE(other->objectForKey("truth")->as<NSNumber>()->isBool());

    ASSERT_TRUE(
        other->importPropertyList(*propertylist::encode(values, propertylist::Format::binary)));
    for (const char* wrong :
         {"", "?", "<plist><array/></plist>", "<plist><dict><key>text</key></dict></plist>"})
        EXPECT_FALSE(other->importPropertyList(bytes(wrong)));
    EXPECT_EQ(other->dictionaryRepresentation(), expected);
    store().setObject(std::string("\x01"), "k");
    EXPECT_FALSE(store().exportedXML());
}

// Whatever the threads of the parent are about.
TEST_F(Defaults, GoOnInTheChildOfABusyProcess) {
    const EvaluedUserDefaultsKey<IntUDC> key({.name = "k", .value = 0});
    const NSNotificationName posted = NSUserDefaults::didSetKeyNotification();
    NSNotificationCenter& center = *NSNotificationCenter::defaultCenter();
    store().registerDefaults({{"list", PropertyList::Array{1, 2, 3}}});
    std::atomic<bool> goesOn = true;
    std::thread reading([&] {
        while (goesOn)
            store().objectForKey("list");
    });
    std::thread observing([&] {
        for (int i = 0; goesOn; ++i) {
            const NSNotificationName name(std::to_string(i));
            center.removeObserver(center.addObserver(posted, {}, {}, [](const auto&) {}));
        }
    });
    for (int i = 0; i < 100 && !HasFailure(); ++i)
        EXPECT_TRUE(inChild([&] {
            ::alarm(20);
            store().set(key, i);
            return store().arrayForKey("list") && NSNotificationName("new") != posted;
        }));
    goesOn = false;
    reading.join();
    observing.join();
}

TEST_F(Defaults, AreSafeFromSeveralThreads) {
    const auto work = [this](const char* own) {
        for (int i = 0; i < 400; ++i) {
            store().setInteger(i, own);
            store().registerDefaults({{"r", i}});
            store().integerForKey("r");
        }
        EXPECT_EQ(store().integerForKey(own), 399);
    };
    std::thread other(work, "a");
    work("b");
    other.join();
}
