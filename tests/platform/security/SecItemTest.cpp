#include "SecureItems.h"

#include <tests/trials/ClockOffset.h>

namespace {

class SecItemTest : public SecureItems {
protected:
    /// The accounts of all items that match.
    static std::multiset<std::string> accounts(Dictionary query) {
        query.emplace(kSecClass, kSecClassGenericPassword);
        query.insert_or_assign(kSecMatchLimit, kSecMatchLimitAll);
        query.insert_or_assign(kSecReturnAttributes, true);
        const SecItemResult found = SecItemCopyMatching(query);
        std::multiset<std::string> names;
        if (found.status != errSecSuccess)
            return names;
        for (const PropertyList& item : *found.value->as<PropertyList::Array>())
            names.insert(*item.as<Dictionary>()->at(kSecAttrAccount).as<std::string>());
        return names;
    }

    /// All that there is of an item.
    static Dictionary everything(const Data& reference) {
        const auto found = SecItemCopyMatching({{kSecValuePersistentRef, reference},
                                                {kSecReturnAttributes, true},
                                                {kSecReturnData, true},
                                                {kSecReturnPersistentRef, true}});
        return found.value ? *found.value->as<Dictionary>() : Dictionary();
    }
};

} // namespace

TEST_F(SecItemTest, EveryAttributeNamedHasToBeEqual) {
    EXPECT_EQ(SecItemDelete(item("a")), errSecItemNotFound);
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecValueData, bytesOf("x")}}), errSecItemNotFound);
    EXPECT_FALSE(fs::exists(folder())) << "looking makes nothing";
    const std::string odd("c\0d", 3);
    ASSERT_EQ(add("a", "1", {{kSecAttrLabel, "L"}, {kSecAttrGeneric, Data{std::byte{255}}}}),
              errSecSuccess);
    const Dictionary ofB{{kSecAttrLabel, "l"},
                         {kSecAttrAccessGroup, "group"},
                         {kSecAttrGeneric, "g"},
                         {kSecAttrSynchronizable, true},
                         {kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}};
    ASSERT_EQ(add("b", "2", ofB), errSecSuccess);
    ASSERT_EQ(add(odd, "3", {{kSecAttrService, "other"}}), errSecSuccess);
    EXPECT_THAT(accounts({}), UnorderedElementsAre("a", "b", odd));
    EXPECT_THAT(accounts({{kSecAttrService, "test"}}), UnorderedElementsAre("a", "b"));
    EXPECT_THAT(accounts({{kSecAttrService, "tes"}}), UnorderedElementsAre());
    EXPECT_THAT(accounts({{kSecAttrAccount, odd}}), UnorderedElementsAre(odd));
    EXPECT_THAT(accounts({{kSecAttrAccount, "c"}}), UnorderedElementsAre());
    EXPECT_THAT(accounts({{kSecAttrLabel, "L"}}), UnorderedElementsAre("a"));
    EXPECT_THAT(accounts({{kSecAttrLabel, ""}}), UnorderedElementsAre()); // not the same as none
    EXPECT_THAT(accounts({{kSecAttrAccessGroup, ""}}), UnorderedElementsAre("a", odd));
    EXPECT_THAT(accounts({{kSecAttrGeneric, Data{std::byte{255}}}}), UnorderedElementsAre("a"));
    EXPECT_THAT(accounts({{kSecAttrGeneric, bytesOf("g")}}),
                UnorderedElementsAre("b")); // a text is its bytes
    EXPECT_THAT(accounts({{kSecAttrAccessible, kSecAttrAccessibleWhenUnlocked}}),
                UnorderedElementsAre("a", odd));
    EXPECT_THAT(accounts({{kSecAttrSynchronizable, true}}), UnorderedElementsAre("b"));
    EXPECT_THAT(accounts({{kSecAttrSynchronizable, kSecAttrSynchronizableAny}}),
                UnorderedElementsAre("a", "b", odd));
    EXPECT_THAT(
        accounts(
            {{kSecAttrService, "test"}, {kSecAttrLabel, "l"}, {kSecAttrSynchronizable, false}}),
        UnorderedElementsAre());
}

TEST_F(SecItemTest, WhatIdentifiesAnItemIsWhatMakesADuplicate) {
    const auto addAnother = [](const Dictionary& more) { return add("a", "2", more); };
    const Dictionary either{{kSecAttrSynchronizable, kSecAttrSynchronizableAny}};
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    EXPECT_EQ(addAnother({{kSecAttrLabel, "l"}, {kSecAttrGeneric, "g"}}), errSecDuplicateItem);
    EXPECT_EQ(addAnother({{kSecAttrAccessGroup, ""}}), errSecDuplicateItem);
    EXPECT_EQ(addAnother({{kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}}),
              errSecDuplicateItem);
    EXPECT_EQ(addAnother(either), errSecDuplicateItem);
    EXPECT_EQ(addAnother({{kSecAttrSynchronizable, true}}), errSecSuccess);
    EXPECT_EQ(addAnother({{kSecAttrAccessGroup, "g"}}), errSecSuccess);
    EXPECT_EQ(addAnother({{kSecAttrService, "s"}}), errSecSuccess);
    // As either state, it is a duplicate of a synchronizable one alone too.
    ASSERT_EQ(add("b", "1", {{kSecAttrSynchronizable, true}}), errSecSuccess);
    EXPECT_EQ(add("b", "2", either), errSecDuplicateItem);
    EXPECT_EQ(add("b", "2"), errSecSuccess);
}

TEST_F(SecItemTest, OfBothStatesTheOneWrittenLastIsRead) {
    ASSERT_EQ(add("a", "first"), errSecSuccess);
    ASSERT_EQ(add("a", "second", {{kSecAttrSynchronizable, true}}), errSecSuccess);
    EXPECT_EQ(get(item("a")), "second");
    ASSERT_EQ(SecItemUpdate(item("a", {{kSecAttrSynchronizable, false}}),
                            {{kSecValueData, bytesOf("third")}}),
              errSecSuccess);
    EXPECT_EQ(get(item("a")), "third");
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecAttrSynchronizable, true}}), errSecDuplicateItem);
    EXPECT_EQ(accounts(item("a")).size(), 2u); // nothing was changed
    EXPECT_EQ(get(item("a", {{kSecAttrSynchronizable, true}})), "second");
    EXPECT_EQ(SecItemDelete(item("a")), errSecSuccess);
    EXPECT_EQ(get(item("a")), absent);
}

TEST_F(SecItemTest, AnUpdateKeepsWhatItDoesNotChange) {
    ASSERT_EQ(add("a", "v", {{kSecAttrLabel, "old"}, {kSecAttrGeneric, "g"}}), errSecSuccess);
    const Data name = reference(item("a"));
    const Dictionary before = everything(name);
    EXPECT_EQ(before.at(kSecAttrCreationDate), before.at(kSecAttrModificationDate));
    ASSERT_EQ(SecItemUpdate(item("a"), {{kSecAttrLabel, "new"}, {kSecAttrAccount, "b"}}),
              errSecSuccess);
    const Dictionary after = everything(name);
    EXPECT_LT(*before.at(kSecAttrModificationDate).as<Date>(),
              *after.at(kSecAttrModificationDate).as<Date>());
    Dictionary expected{{kSecAttrLabel, "new"},
                        {kSecAttrAccount, "b"},
                        {kSecAttrGeneric, bytesOf("g")},
                        {kSecValueData, bytesOf("v")},
                        {kSecValuePersistentRef, name},
                        {kSecAttrModificationDate, after.at(kSecAttrModificationDate)}};
    expected.insert(before.begin(), before.end());
    EXPECT_EQ(after, expected);
}

// Which writing came last does not depend on what the clock said.
TEST_F(SecItemTest, AClockThatIsSetDoesNotChangeTheOrder) {
    ASSERT_EQ(add("a", "false", {{kSecAttrSynchronizable, false}}), errSecSuccess);
    ASSERT_EQ(add("a", "true", {{kSecAttrSynchronizable, true}}), errSecSuccess);
    const std::chrono::seconds offsets[] = {-1s, -1'000'000h, 1'000'000h, 0s};
    for (const auto ahead : offsets) {
        setClockOffset(ahead);
        for (const bool isSynchronizable : {false, true, false}) {
            const Dictionary query = item("a", {{kSecAttrSynchronizable, isSynchronizable}});
            const Data name = reference(query);
            const Dictionary before = everything(name);
            const std::string value =
                std::to_string(ahead.count()) + (isSynchronizable ? "t" : "f");
            ASSERT_EQ(SecItemUpdate(query, {{kSecValueData, bytesOf(value)}}), errSecSuccess);
            EXPECT_EQ(get(item("a")), value);
            const Dictionary after = everything(name);
            EXPECT_EQ(after.at(kSecAttrCreationDate), before.at(kSecAttrCreationDate));
            EXPECT_LT(*before.at(kSecAttrModificationDate).as<Date>(),
                      *after.at(kSecAttrModificationDate).as<Date>());
        }
    }
}

TEST_F(SecItemTest, ResultsAreWhatIsAskedFor) {
    for (const char* account : {"a", "b", "c"})
        ASSERT_EQ(add(account, account), errSecSuccess);
    const auto copy = [](Dictionary more) {
        more.emplace(kSecClass, kSecClassGenericPassword);
        return SecItemCopyMatching(more);
    };
    EXPECT_FALSE(copy({}).value);
    EXPECT_EQ(copy({}).status, errSecSuccess);
    EXPECT_TRUE(copy({{kSecReturnAttributes, true}}).value->as<Dictionary>());
    EXPECT_EQ(copy({{kSecReturnData, true}, {kSecMatchLimit, 1}}).value, bytesOf("a"));
    EXPECT_EQ(copy({{kSecReturnData, true}, {kSecMatchLimit, 2}}).value,
              (PropertyList::Array{bytesOf("a"), bytesOf("b")}));
    EXPECT_EQ(copy({{kSecReturnData, true}, {kSecReturnPersistentRef, true}})
                  .value->as<Dictionary>()
                  ->size(),
              2u);
}

TEST_F(SecItemTest, APersistentReferenceNamesOneItemForGood) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    const Data name = reference(item("a"));
    EXPECT_EQ(get({{kSecValuePersistentRef, name}}), "1");
    EXPECT_EQ(get(item("b", {{kSecValuePersistentRef, name}})), absent);
    EXPECT_EQ(SecItemUpdate({{kSecValuePersistentRef, name}}, {{kSecValueData, bytesOf("2")}}),
              errSecSuccess);
    EXPECT_EQ(get(item("a")), "2");
    EXPECT_EQ(SecItemDelete({{kSecValuePersistentRef, name}}), errSecSuccess);
    ASSERT_EQ(add("a", "3"), errSecSuccess);
    EXPECT_EQ(get({{kSecValuePersistentRef, name}}), absent);
    EXPECT_EQ(get({{kSecValuePersistentRef, bytesOf("zsi")}}), absent);
}

TEST_F(SecItemTest, RefusesWhatMakesNoSense) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    EXPECT_EQ(SecItemAdd({{kSecClass, "certificate"}}), errSecParam);
    EXPECT_EQ(add("b", "", {{"acount", "x"}}), errSecNoSuchAttr);
    EXPECT_EQ(add("b", "", {{kSecAttrLabel, 5}}), errSecParam);
    EXPECT_EQ(add("b", "", {{kSecAttrAccessible, "always"}}), errSecParam);
    EXPECT_EQ(add("b", "", {{kSecReturnData, true}}), errSecParam);
    EXPECT_EQ(SecItemAdd(item("b", {{kSecValueData, "text"}})), errSecParam);
    EXPECT_EQ(SecItemAdd(item("b", {{kSecValueData, Data(maximumSecretSize + 1)}})),
              errSecDataTooLarge);
    EXPECT_EQ(SecItemCopyMatching(item("a", {{kSecMatchLimit, 0}})).status, errSecParam);
    EXPECT_EQ(SecItemCopyMatching(item("a", {{kSecReturnData, 1}})).status, errSecParam);
    EXPECT_EQ(SecItemCopyMatching(item("a", {{kSecValueData, bytesOf("1")}})).status, errSecParam);
    EXPECT_EQ(SecItemCopyMatching({{kSecAttrAccount, "a"}}).status, errSecParam);
    EXPECT_EQ(SecItemUpdate(item("a"), {}), errSecParam);
    EXPECT_EQ(SecItemUpdate(item("a"), item("b")), errSecParam); // a class cannot be changed
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecAttrSynchronizable, kSecAttrSynchronizableAny}}),
              errSecParam);
    EXPECT_EQ(SecItemUpdate(item("a", {{kSecReturnData, true}}), {{kSecAttrLabel, "l"}}),
              errSecParam);
    EXPECT_EQ(SecItemDelete(item("a", {{kSecMatchLimit, kSecMatchLimitOne}})), errSecParam);
    EXPECT_EQ(accounts({}).size(), 1u);
    EXPECT_EQ(get(item("a")), "1");
}

TEST_F(SecItemTest, ValuesAreOfAnySizeUpToTheLimit) {
    const std::string value(maximumSecretSize, '\xFE');
    ASSERT_EQ(add("a", value), errSecSuccess);
    EXPECT_TRUE(get(item("a")) == value);
}

TEST_F(SecItemTest, NothingOfAValueIsOnTheDisk) {
    const std::string secret = "a secret that is long enough to be found";
    ASSERT_EQ(add("a", secret), errSecSuccess);
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file()) {
            EXPECT_EQ(text(entry.path()).find(secret), std::string::npos) << entry.path();
        }
}
