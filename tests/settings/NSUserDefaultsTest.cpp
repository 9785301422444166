#include "Store.h"

#include <zorvan/platform/propertylist/PropertyListFile.h>

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

TEST_F(Defaults, AreSafeFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this, t] {
            for (int i = 0; i < 200; ++i) {
                store().setInteger(i, "own" + std::to_string(t));
                store().registerDefaults({{"r", i}});
                store().integerForKey("r");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(store().integerForKey("own" + std::to_string(t)), 199);
}
