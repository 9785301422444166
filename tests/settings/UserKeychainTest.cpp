#include <tests/Testing.h>

#include "Process.h"

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/settings/UserKeychain.h>

#include <tests/bytesOf.h>
#include <tests/files/TemporaryFolder.h>
#include <tests/platform/settingsdatabase/Processes.h>

namespace {

using Access = UserKeychain::Access;

class KeychainTest : public testing::Test {
protected:
    KeychainTest() {
        ::setenv("XDG_DATA_HOME", root.c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", root.c_str(), 1);
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
        keychain = UserKeychain::create({.serviceName = "test"});
    }

    /// The attributes of every item there is.
    static std::vector<PropertyList::Dictionary> items() {
        const SecItemResult found = SecItemCopyMatching({{kSecClass, kSecClassGenericPassword},
                                                         {kSecMatchLimit, kSecMatchLimitAll},
                                                         {kSecReturnAttributes, true}});
        std::vector<PropertyList::Dictionary> result;
        if (found.value)
            for (const PropertyList& item : *found.value->as<PropertyList::Array>())
                result.push_back(*item.as<PropertyList::Dictionary>());
        return result;
    }

    const TemporaryFolder folder;
    const fs::path root = folder.path();
    std::shared_ptr<UserKeychain> keychain;
    const UserKeychain::Key key{"key"};
};

struct Token {
    static constexpr std::string_view archivedClassName = "Token";
    std::string text;
    std::int64_t uses = 0;
    void encode(NSKeyedArchiver& coder) const {
        coder.encode(text, "text");
        coder.encode(uses, "uses");
    }
    static Token decode(const NSKeyedUnarchiver& coder) {
        Token token{coder.decode<std::string>("text"), coder.decode<std::int64_t>("uses")};
        if (token.uses < 0)
            throw std::out_of_range("uses");
        return token;
    }
    friend bool operator==(const Token&, const Token&) = default;
};

} // namespace

TEST_F(KeychainTest, AccessesHaveTheirConstants) {
    const std::pair<Access, std::string> table[] = {
        {Access::afterFirstUnlock, kSecAttrAccessibleAfterFirstUnlock},
        {Access::afterFirstUnlockThisDeviceOnly, kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly},
        {Access::whenPasscodeSetThisDeviceOnly, kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly},
        {Access::whenUnlocked, kSecAttrAccessibleWhenUnlocked},
        {Access::whenUnlockedThisDeviceOnly, kSecAttrAccessibleWhenUnlockedThisDeviceOnly},
    };
    const auto* next = Access::all.begin();
    for (const auto& [access, constant] : table) {
        EXPECT_EQ(*next++, access);
        EXPECT_EQ(access.attributeValue(), constant);
        EXPECT_EQ(Access::make(constant), access);
    }
    EXPECT_EQ(next, Access::all.end());
    EXPECT_EQ(Access::lookup().size(), 5u);
    for (const Access none : {Access::always, Access::alwaysThisDeviceOnly})
        EXPECT_EQ(none.attributeValue(), std::nullopt);
    EXPECT_EQ(Access::make("always"), std::nullopt);
}

TEST_F(KeychainTest, KeepsEveryKindOfValue) {
    char array[] = "größer";
    char* const pointer = array;
    const auto keepsText = [&](auto&& text) {
        return keychain->set("", key) && keychain->string(key) == "" && keychain->set(text, key) &&
               keychain->string(key) == "größer";
    };
    EXPECT_TRUE(keepsText(array) && keepsText(pointer) && keepsText(std::string(array)) &&
                keepsText(std::string_view(array)));
    EXPECT_EQ(keychain->data(key), bytesOf("größer"));
    EXPECT_EQ(keychain->integer(key), std::nullopt);
    EXPECT_TRUE(keychain->set(Data{std::byte{0xFF}}, key));
    EXPECT_EQ(keychain->string(key), std::nullopt); // no text
    EXPECT_EQ(keychain->data(key), Data{std::byte{0xFF}});

    EXPECT_TRUE(keychain->set(42, key));
    EXPECT_EQ(keychain->integer(key), 42);
    EXPECT_EQ(keychain->double_(key), 42.0);
    EXPECT_EQ(keychain->data(key), NSKeyedArchiver::archivedData(NSNumber(42)));
    EXPECT_TRUE(keychain->set(0.1f, key));
    EXPECT_EQ(keychain->float_(key), 0.1f);
    EXPECT_TRUE(keychain->set(false, key));
    EXPECT_EQ(keychain->bool_(key), false);
    EXPECT_TRUE(keychain->object<NSNumber>(key)->isBool());

    EXPECT_TRUE(keychain->set(Token{"t", 3}, key));
    EXPECT_EQ(keychain->object<Token>(key), (Token{"t", 3}));
    EXPECT_EQ(keychain->object<std::string>(key), std::nullopt); // of another class
    EXPECT_TRUE(keychain->set(Token{"t", -1}, key));
    EXPECT_EQ(keychain->object<Token>(key), std::nullopt); // refused by its own class
    EXPECT_EQ(items().size(), 1u);
}

TEST_F(KeychainTest, WhatCannotBeStoredChangesNothing) {
    ASSERT_TRUE(keychain->set("kept", key));
    EXPECT_FALSE(keychain->set("\xC0\x80", key));
    EXPECT_FALSE(keychain->set(std::numeric_limits<std::uint64_t>::max(), key));
    EXPECT_FALSE(keychain->set(Token{"\xFF", 1}, key));
    EXPECT_FALSE(keychain->set(Data(maximumSecretSize + 1), key));
    EXPECT_EQ(keychain->string(key), "kept");
}

TEST_F(KeychainTest, ItemsHaveTheAttributesOfTheirKey) {
    const auto grouped = UserKeychain::create({.serviceName = "s", .accessGroup = "g"});
    EXPECT_TRUE(grouped->set("v", key, Access::afterFirstUnlock));
    const auto item = items().at(0);
    EXPECT_EQ(item.at(kSecAttrService), "s");
    EXPECT_EQ(item.at(kSecAttrAccessGroup), "g");
    EXPECT_EQ(item.at(kSecAttrLabel), "key");
    EXPECT_EQ(item.at(kSecAttrGeneric), bytesOf("key"));
    EXPECT_EQ(item.at(kSecAttrAccount), "key");
    EXPECT_EQ(item.at(kSecAttrAccessible), kSecAttrAccessibleAfterFirstUnlock);
    EXPECT_EQ(item.at(kSecAttrSynchronizable), false);
    // Without a group, items of every group of the service are meant.
    EXPECT_EQ(UserKeychain::create({.serviceName = "s"})->string(key), "v");
    EXPECT_EQ(keychain->string(key), std::nullopt);
}

TEST_F(KeychainTest, AnAccessNarrowsWhatIsMeant) {
    EXPECT_FALSE(keychain->hasValue(key));
    EXPECT_EQ(keychain->dataRef(key), std::nullopt);
    EXPECT_TRUE(keychain->set("1", key));
    EXPECT_EQ(SecItemCopyMatching({{kSecValuePersistentRef, keychain->dataRef(key).value()},
                                   {kSecReturnData, true}})
                  .value,
              PropertyList(bytesOf("1")));
    EXPECT_EQ(items().at(0).at(kSecAttrAccessible), kSecAttrAccessibleWhenUnlocked);
    EXPECT_EQ(keychain->string(key, Access::whenUnlocked), "1");
    EXPECT_EQ(keychain->string(key, Access::afterFirstUnlock), std::nullopt);
    // It exists, so it is not added; and as one of that access it is not there to be changed.
    EXPECT_FALSE(keychain->set("2", key, Access::afterFirstUnlock));
    EXPECT_FALSE(keychain->remove(key, Access::afterFirstUnlock));
    EXPECT_EQ(keychain->string(key), "1");
    // An access without a constant counts as none.
    EXPECT_TRUE(keychain->set("3", key, Access::always));
    EXPECT_EQ(keychain->string(key, Access::alwaysThisDeviceOnly), "3");
    EXPECT_EQ(items().size(), 1u);
    EXPECT_TRUE(keychain->remove(key, Access::whenUnlocked));
    EXPECT_FALSE(keychain->hasValue(key));
    EXPECT_FALSE(keychain->remove(key));
}

TEST_F(KeychainTest, AllKeysAreThoseOfTheServiceInEitherState) {
    const UserKeychain::Key second("second"), third({.rawValue = "third"});
    const auto other = UserKeychain::create({.serviceName = "other"});
    const auto grouped = UserKeychain::create({.serviceName = "test", .accessGroup = "g"});
    EXPECT_FALSE(keychain->removeAllKeys());
    EXPECT_TRUE(other->set("o", key));
    EXPECT_FALSE(keychain->removeAllKeys());
    EXPECT_TRUE(grouped->set("g", third));
    EXPECT_TRUE(keychain->set("1", key));
    keychain->setEnableSynchronization(true);
    EXPECT_TRUE(keychain->set("2", second));
    EXPECT_TRUE(keychain->set("3", key)); // another item, and the last word
    EXPECT_EQ(keychain->string(key), "3");
    keychain->setEnableSynchronization(false);
    EXPECT_EQ(keychain->string(second), "2");
    EXPECT_TRUE(keychain->set("4", second)); // which keeps its state
    EXPECT_EQ(keychain->string(second), "4");
    EXPECT_EQ(std::ranges::count_if(
                  items(), [](auto& item) { return item.at(kSecAttrSynchronizable) == true; }),
              2);
    EXPECT_EQ(items().size(), 5u);
    EXPECT_TRUE(grouped->removeAllKeys());
    EXPECT_EQ(items().size(), 4u);
    EXPECT_TRUE(keychain->removeAllKeys());
    EXPECT_EQ(items().size(), 1u);
    EXPECT_EQ(other->string(key), "o");
}

TEST_F(KeychainTest, AChangeIsWholeOrNothing) {
    const auto count = [&](auto& value) { value = value.value_or(0) + 1; };
    EXPECT_TRUE(keychain->modify<std::int64_t>(key, count));
    EXPECT_TRUE(keychain->modify<double>(key, count));
    EXPECT_EQ(keychain->integer(key), 2);
    EXPECT_TRUE(keychain->modify<std::string>(key, [&](auto& text) {
        text = text ? "a text" : "t"; // there is a number
    }));
    const UserKeychain::Key other("other");
    const auto both = [&](bool fails) {
        return [&, fails](std::optional<std::string>& text) {
            keychain->set("own", key);
            EXPECT_EQ(keychain->string(key), "own"); // of the same transaction
            keychain->set("o", other);
            *text += fails ? "\xFF" : "u";
            if (fails)
                throw std::out_of_range("other");
        };
    };
    EXPECT_THROW(keychain->modify<std::string>(key, both(true)), std::out_of_range);
    EXPECT_FALSE(keychain->hasValue(other));
    EXPECT_TRUE(keychain->modify<std::string>(key, both(false)));
    EXPECT_EQ(keychain->string(other), "o");
    EXPECT_FALSE(keychain->modify<std::string>(key, [](auto& text) { text = "\xFF"; }));
    EXPECT_EQ(keychain->string(key), "tu");
    EXPECT_TRUE(keychain->modify<Data>(key, [](auto& bytes) { bytes->push_back(std::byte{'v'}); }));
    EXPECT_EQ(keychain->string(key), "tuv");
    EXPECT_TRUE(keychain->modify<Token>(key, [](auto& token) { token = Token{"t", 1}; }));
    EXPECT_EQ(keychain->object<Token>(key), (Token{"t", 1}));
    EXPECT_TRUE(keychain->modify<Token>(key, [](auto& token) { token.reset(); }));
    EXPECT_FALSE(keychain->hasValue(key));
    EXPECT_TRUE(keychain->modify<Token>(key, [&](auto&) { keychain->set("p", other); }));
    EXPECT_EQ(keychain->string(other), "p");
    EXPECT_FALSE(keychain->modify<std::string>(key, [&](auto& text) {
        keychain->set("q", other);
        text = "\xFF";
    }));
    EXPECT_TRUE(keychain->modify<std::string>(other, [&](auto& text) {
        EXPECT_EQ(text, "p");
        keychain->remove(other);
        text.reset();
    }));
    EXPECT_FALSE(keychain->hasValue(other));
}

// A store of one value that several processes and threads change at once.
TEST_F(KeychainTest, NoChangeIsLost) {
    constexpr int each = 40;
    const auto count = [&] {
        for (int i = 0; i < each; ++i)
            if (!keychain->modify<std::int64_t>(key, [](auto& n) { n = n.value_or(0) + 1; }))
                return false;
        return true;
    };
    Child one(count), two(count), three(count);
    std::thread thread([&] { EXPECT_TRUE(count()); });
    EXPECT_TRUE(count());
    thread.join();
    EXPECT_TRUE(one.end() && two.end() && three.end());
    EXPECT_EQ(keychain->integer(key), 5 * each);
}

// A fork takes hold of both kinds of stores.
TEST_F(KeychainTest, StoresUsedWithinEachOtherLetTheProcessFork) {
    EXPECT_TRUE(inChild([&] {
        ::alarm(20);
        const auto settings = SettingsDatabase::open(root / "a.settings");
        std::thread forking;
        const auto fork = [&] {
            forking = std::thread([] { EXPECT_TRUE(inChild([] { return true; })); });
            std::this_thread::sleep_for(20ms);
        };
        EXPECT_TRUE(keychain->modify<std::string>(key, [&](auto& text) {
            fork();
            EXPECT_TRUE(settings->set("k", 1));
            text = "1";
        }));
        forking.join();
        settings->transact([&] {
            fork();
            EXPECT_TRUE(keychain->set(*keychain->string(key) + "2", key));
        });
        forking.join();
        return settings->value("k") && keychain->string(key) == "12";
    }));
}

TEST_F(KeychainTest, WithoutAStoreEverythingIsFalseOrAbsent) {
    std::ofstream(root / "file");
    ::setenv("XDG_DATA_HOME", (root / "file").c_str(), 1); // where no folder can be made
    EXPECT_FALSE(keychain->set("1", key));
    EXPECT_FALSE(keychain->hasValue(key));
    EXPECT_FALSE(keychain->removeAllKeys());
    EXPECT_FALSE(keychain->modify<Data>(key, [](auto& bytes) { bytes = Data(); }));
}

// Objects older than the store use it after the main function.
TEST_F(KeychainTest, LivesUntilTheProcessEnds) {
    Process program({STANDARD_KEYCHAIN, "late"}, {{"XDG_DATA_HOME", root.string()}});
    EXPECT_EQ(program.hear(), "QuenlowKeychain");
    EXPECT_EQ(program.hear(), "late 5");
}

TEST_F(KeychainTest, TheStandardOneIsTheMainBundles) {
    EXPECT_EQ(UserKeychain::standard(), UserKeychain::standard());
    EXPECT_EQ(UserKeychain::standard()->accessGroup(), std::nullopt);
    EXPECT_EQ(UserKeychain::createForProgram()->serviceName(),
              fs::read_symlink("/proc/self/exe").filename());
    fs::copy(STANDARD_KEYCHAIN, root / "program");
    fs::create_directory(root / "program.bundle");
    std::ofstream(root / "program.bundle" / "Info.plist")
        << "<plist><dict><key>CFBundleIdentifier</key><string>org.example.app</string></dict></"
           "plist>";
    Process program({(root / "program").string()}, {});
    EXPECT_EQ(program.hear(), "org.example.app");
}
