#include "SecureItems.h"

#include <sys/syscall.h>

namespace {

std::atomic<std::time_t> secondsFromNow = 0; // what the clock is wrong by

class SecItemTest : public SecureItems {
protected:
    /// The accounts of all items that match.
    static std::multiset<std::string> accounts(Dictionary query) {
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

    static Dictionary ofClass(const Dictionary& more = {}) {
        Dictionary query{{kSecClass, kSecClassGenericPassword}};
        query.insert(more.begin(), more.end());
        return query;
    }

    /// All that there is of an item.
    static Dictionary everything(const Data& reference) {
        const auto found = SecItemCopyMatching({{kSecValuePersistentRef, reference},
                                                {kSecReturnAttributes, true},
                                                {kSecReturnData, true},
                                                {kSecReturnPersistentRef, true}});
        return found.value ? *found.value->as<Dictionary>() : Dictionary();
    }

    static Data reference(const Dictionary& query) {
        Dictionary asking = query;
        asking.emplace(kSecReturnPersistentRef, true);
        return *SecItemCopyMatching(asking).value->as<Data>();
    }
};

} // namespace

/// Stands in for the C library's, for the libraries of the program too.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (clock == CLOCK_REALTIME)
        time->tv_sec += secondsFromNow;
    return static_cast<int>(result);
}

TEST_F(SecItemTest, AnItemComesAndGoes) {
    EXPECT_EQ(get(item("a")), std::to_string(errSecItemNotFound));
    EXPECT_EQ(SecItemDelete(item("a")), errSecItemNotFound);
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecValueData, bytesOf("x")}}), errSecItemNotFound);
    EXPECT_FALSE(std::filesystem::exists(folder())); // looking makes nothing
    EXPECT_EQ(add("a", "one"), errSecSuccess);
    EXPECT_EQ(get(item("a")), "one");
    EXPECT_EQ(add("a", "two"), errSecDuplicateItem);
    EXPECT_EQ(get(item("a")), "one");
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecValueData, bytesOf("")}}), errSecSuccess);
    EXPECT_EQ(get(item("a")), "");
    EXPECT_EQ(SecItemDelete(item("a")), errSecSuccess);
    EXPECT_EQ(get(item("a")), std::to_string(errSecItemNotFound));
}

TEST_F(SecItemTest, EveryAttributeNamedHasToBeEqual) {
    const Data generic{std::byte{0}, std::byte{255}};
    ASSERT_EQ(add("a", "1", {{kSecAttrLabel, "L"}, {kSecAttrGeneric, generic}}), errSecSuccess);
    ASSERT_EQ(add("b", "2",
                  {{kSecAttrLabel, "l"},
                   {kSecAttrAccessGroup, "group"},
                   {kSecAttrGeneric, "g"},
                   {kSecAttrSynchronizable, true},
                   {kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}}),
              errSecSuccess);
    ASSERT_EQ(
        add("c", "3", {{kSecAttrService, "other"}, {kSecAttrAccount, std::string("c\0d", 3)}}),
        errSecSuccess);
    const std::string odd("c\0d", 3);
    struct {
        Dictionary more;
        std::multiset<std::string> found;
    } table[] = {
        {{}, {"a", "b", odd}},
        {{{kSecAttrService, "test"}}, {"a", "b"}},
        {{{kSecAttrService, "tes"}}, {}},
        {{{kSecAttrAccount, odd}}, {odd}},
        {{{kSecAttrAccount, "c"}}, {}},
        {{{kSecAttrLabel, "L"}}, {"a"}},
        {{{kSecAttrLabel, ""}}, {}}, // not the same as none
        {{{kSecAttrAccessGroup, ""}}, {"a", odd}},
        {{{kSecAttrAccessGroup, "group"}}, {"b"}},
        {{{kSecAttrGeneric, generic}}, {"a"}},
        {{{kSecAttrGeneric, bytesOf("g")}}, {"b"}}, // a text is its bytes
        {{{kSecAttrAccessible, kSecAttrAccessibleWhenUnlocked}}, {"a", odd}},
        {{{kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}}, {"b"}},
        {{{kSecAttrSynchronizable, true}}, {"b"}},
        {{{kSecAttrSynchronizable, false}}, {"a", odd}},
        {{{kSecAttrSynchronizable, kSecAttrSynchronizableAny}}, {"a", "b", odd}},
        {{{kSecAttrService, "test"}, {kSecAttrLabel, "l"}, {kSecAttrSynchronizable, false}}, {}},
    };
    for (const auto& row : table)
        EXPECT_EQ(accounts(ofClass(row.more)), row.found);
}

TEST_F(SecItemTest, WhatIdentifiesAnItemIsWhatMakesADuplicate) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    struct {
        Dictionary more;
        OSStatus status;
    } table[] = {
        {{{kSecAttrLabel, "other"}, {kSecAttrGeneric, "other"}}, errSecDuplicateItem},
        {{{kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}}, errSecDuplicateItem},
        {{{kSecAttrAccessGroup, ""}}, errSecDuplicateItem},
        {{{kSecAttrSynchronizable, kSecAttrSynchronizableAny}}, errSecDuplicateItem},
        {{{kSecAttrSynchronizable, true}}, errSecSuccess},
        {{{kSecAttrAccessGroup, "g"}}, errSecSuccess},
        {{{kSecAttrService, "s"}}, errSecSuccess},
        // As either state, it is a duplicate of a synchronizable one alone too.
        {{{kSecAttrAccount, "b"}, {kSecAttrSynchronizable, true}}, errSecSuccess},
        {{{kSecAttrAccount, "b"}, {kSecAttrSynchronizable, kSecAttrSynchronizableAny}},
         errSecDuplicateItem},
        {{{kSecAttrAccount, "b"}, {kSecAttrSynchronizable, false}}, errSecSuccess},
    };
    for (const auto& row : table)
        EXPECT_EQ(add("a", "2", row.more), row.status);
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
    EXPECT_EQ(accounts(item("a")).size(), 0u);
}

TEST_F(SecItemTest, AnUpdateKeepsWhatItDoesNotChange) {
    ASSERT_EQ(add("a", "v", {{kSecAttrLabel, "old"}, {kSecAttrGeneric, "g"}}), errSecSuccess);
    const Data name = reference(item("a"));
    const Dictionary before = everything(name);
    EXPECT_EQ(before.at(kSecAttrCreationDate), before.at(kSecAttrModificationDate));
    ASSERT_EQ(SecItemUpdate(item("a"), {{kSecAttrLabel, "new"}, {kSecAttrAccount, "b"}}),
              errSecSuccess);
    Dictionary expected = before;
    expected.insert_or_assign(kSecAttrLabel, "new");
    expected.insert_or_assign(kSecAttrAccount, "b");
    const Dictionary after = everything(name);
    EXPECT_LT(*before.at(kSecAttrModificationDate).as<Date>(),
              *after.at(kSecAttrModificationDate).as<Date>());
    expected.insert_or_assign(kSecAttrModificationDate, after.at(kSecAttrModificationDate));
    EXPECT_EQ(after, expected);
    EXPECT_EQ(expected.at(kSecValueData), bytesOf("v"));
    EXPECT_EQ(expected.at(kSecValuePersistentRef), name);
    EXPECT_EQ(expected.at(kSecAttrGeneric), bytesOf("g"));
    EXPECT_EQ(get(item("a")), std::to_string(errSecItemNotFound));
}

// Which writing came last does not depend on what the clock said.
TEST_F(SecItemTest, AClockThatIsSetDoesNotChangeTheOrder) {
    ASSERT_EQ(add("a", "false", {{kSecAttrSynchronizable, false}}), errSecSuccess);
    ASSERT_EQ(add("a", "true", {{kSecAttrSynchronizable, true}}), errSecSuccess);
    constexpr std::time_t year = 366 * 86400;
    for (const std::time_t wrongBy : {-1L, -86400L, -100 * year, 100 * year, 0L, -1L}) {
        secondsFromNow = wrongBy;
        for (const bool isSynchronizable : {false, true, false}) {
            const Dictionary query = item("a", {{kSecAttrSynchronizable, isSynchronizable}});
            const Data name = reference(query);
            const Dictionary before = everything(name);
            const std::string value = std::to_string(wrongBy) + (isSynchronizable ? "t" : "f");
            ASSERT_EQ(SecItemUpdate(query, {{kSecValueData, bytesOf(value)}}), errSecSuccess);
            EXPECT_EQ(get(item("a")), value);
            const Dictionary after = everything(name);
            EXPECT_EQ(after.at(kSecAttrCreationDate), before.at(kSecAttrCreationDate));
            EXPECT_LT(*before.at(kSecAttrModificationDate).as<Date>(),
                      *after.at(kSecAttrModificationDate).as<Date>());
        }
    }
    secondsFromNow = 0;
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
    EXPECT_EQ(copy({{kSecReturnData, true}, {kSecMatchLimit, kSecMatchLimitAll}})
                  .value->as<PropertyList::Array>()
                  ->size(),
              3u);
    EXPECT_EQ(copy({{kSecReturnData, true}, {kSecReturnPersistentRef, true}})
                  .value->as<Dictionary>()
                  ->size(),
              2u);
}

TEST_F(SecItemTest, APersistentReferenceNamesOneItemForGood) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    const Data name = reference(item("a"));
    EXPECT_EQ(get({{kSecValuePersistentRef, name}}), "1");
    EXPECT_EQ(get(item("b", {{kSecValuePersistentRef, name}})), std::to_string(errSecItemNotFound));
    EXPECT_EQ(SecItemUpdate({{kSecValuePersistentRef, name}}, {{kSecValueData, bytesOf("2")}}),
              errSecSuccess);
    EXPECT_EQ(get(item("a")), "2");
    EXPECT_EQ(SecItemDelete({{kSecValuePersistentRef, name}}), errSecSuccess);
    ASSERT_EQ(add("a", "3"), errSecSuccess);
    EXPECT_EQ(get({{kSecValuePersistentRef, name}}), std::to_string(errSecItemNotFound));
    EXPECT_EQ(get({{kSecValuePersistentRef, bytesOf("zsi")}}), std::to_string(errSecItemNotFound));
}

TEST_F(SecItemTest, RefusesWhatMakesNoSense) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    struct {
        OSStatus status;
        OSStatus expected;
    } table[] = {
        {SecItemAdd({{kSecAttrAccount, "b"}}), errSecParam},
        {SecItemAdd({{kSecClass, "certificate"}}), errSecParam},
        {add("b", "", {{"acount", "x"}}), errSecNoSuchAttr},
        {add("b", "", {{kSecAttrLabel, 5}}), errSecParam},
        {add("b", "", {{kSecAttrSynchronizable, 1}}), errSecParam},
        {add("b", "", {{kSecAttrAccessible, "always"}}), errSecParam},
        {add("b", "", {{kSecReturnData, true}}), errSecParam},
        {SecItemAdd(item("b", {{kSecValueData, "text"}})), errSecParam},
        {SecItemAdd(item("b", {{kSecValueData, Data(maximumSecretSize + 1)}})), errSecDataTooLarge},
        {SecItemCopyMatching(item("a", {{kSecMatchLimit, 0}})).status, errSecParam},
        {SecItemCopyMatching(item("a", {{kSecMatchLimit, "many"}})).status, errSecParam},
        {SecItemCopyMatching(item("a", {{kSecReturnData, 1}})).status, errSecParam},
        {SecItemCopyMatching(item("a", {{kSecValueData, bytesOf("1")}})).status, errSecParam},
        {SecItemCopyMatching({{kSecAttrAccount, "a"}}).status, errSecParam},
        {SecItemUpdate(item("a"), {}), errSecParam},
        {SecItemUpdate(item("a"), item("b")), errSecParam}, // a class cannot be changed
        {SecItemUpdate(item("a"), {{kSecAttrSynchronizable, kSecAttrSynchronizableAny}}),
         errSecParam},
        {SecItemUpdate(item("a", {{kSecReturnData, true}}), {{kSecAttrLabel, "l"}}), errSecParam},
        {SecItemDelete(item("a", {{kSecMatchLimit, kSecMatchLimitOne}})), errSecParam},
    };
    for (const auto& row : table)
        EXPECT_EQ(row.status, row.expected) << &row - table;
    EXPECT_EQ(accounts(ofClass()).size(), 1u);
    EXPECT_EQ(get(item("a")), "1");
}

TEST_F(SecItemTest, ValuesOfAnySizeUpToTheLimit) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{5000}, maximumSecretSize}) {
        const std::string value(size, '\xFE');
        ASSERT_EQ(add(std::to_string(size), value), errSecSuccess);
        EXPECT_EQ(get(item(std::to_string(size))), value);
    }
}

TEST_F(SecItemTest, ThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    std::atomic<int> added = 0;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, own = "of " + std::to_string(t)] {
            for (int i = 0; i < 100; ++i) {
                const std::string account = std::to_string(i);
                added += add(account, account) == errSecSuccess;
                EXPECT_EQ(get(item(account)), account);
                EXPECT_EQ(add(own, account), errSecSuccess);
                EXPECT_EQ(SecItemUpdate(item(own), {{kSecValueData, bytesOf("new")}}),
                          errSecSuccess);
                EXPECT_EQ(get(item(own)), "new");
                EXPECT_EQ(SecItemDelete(item(own)), errSecSuccess);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(added, 100);
}

TEST_F(SecItemTest, NothingOfAValueIsOnTheDisk) {
    const std::string secret = "a secret that is long enough to be found";
    ASSERT_EQ(add("a", secret), errSecSuccess);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string contents(std::istreambuf_iterator<char>(file), {});
        EXPECT_EQ(contents.find(secret), std::string::npos) << entry.path();
    }
}
