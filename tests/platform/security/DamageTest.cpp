#include "SecureItems.h"

#include <sys/file.h>

namespace {

class DamageTest : public SecureItems {
protected:
    const std::string absent = std::to_string(errSecItemNotFound);
    const std::string refused = std::to_string(errSecAuthFailed);
    const std::string unavailable = std::to_string(errSecNotAvailable);
};

} // namespace

TEST_F(DamageTest, AChangedRowIsAbsent) {
    // Each change is to the item a, of which b and c are copies that nothing was done to.
    const char* const changes[] = {
        "UPDATE items SET sealed = (SELECT sealed FROM items WHERE account = 'b') WHERE account = "
        "'a'",
        "UPDATE items SET (sealed, sealing_key, created, modified) = (SELECT sealed, sealing_key, "
        "created, "
        "modified FROM items WHERE account = 'b') WHERE account = 'a'",
        "UPDATE items SET sealed = substr(sealed, 1, length(sealed) - 1) WHERE account = 'a'",
        "UPDATE items SET sealed = x'' WHERE account = 'a'",
        "UPDATE items SET sealed = 'text' WHERE account = 'a'",
        "UPDATE items SET sealing_key = x'00' WHERE account = 'a'",
        "UPDATE items SET service = 'test' || x'00' WHERE account = 'a'",
        "UPDATE items SET label = NULL WHERE account = 'a'",
        "UPDATE items SET label = CAST(label AS BLOB) WHERE account = 'a'",
        "UPDATE items SET account = CAST(account AS BLOB) WHERE account = 'a'",
        "UPDATE items SET label = 'lg', generic = '' WHERE account = 'a'", // bytes that change
                                                                           // sides
        "UPDATE items SET generic = NULL WHERE account = 'a'",
        "UPDATE items SET access_group = 'g' WHERE account = 'a'",
        "UPDATE items SET accessible = 'afterFirstUnlock' WHERE account = 'a'",
        "UPDATE items SET synchronizable = 1 WHERE account = 'a'",
        "UPDATE items SET created = created + 1 WHERE account = 'a'",
        "UPDATE items SET modified = modified - 1 WHERE account = 'a'",
        "UPDATE items SET reference = 5 WHERE account = 'a'",
        "UPDATE items SET account = 'd' WHERE account = 'a'",
    };
    for (const char* change : changes) {
        for (const char* account : {"a", "b", "c"})
            ASSERT_EQ(add(account, account, {{kSecAttrLabel, "l"}, {kSecAttrGeneric, "g"}}),
                      errSecSuccess);
        const Dictionary everything{{kSecClass, kSecClassGenericPassword},
                                    {kSecMatchLimit, kSecMatchLimitAll},
                                    {kSecReturnPersistentRef, true}};
        EXPECT_EQ(SecItemCopyMatching(everything).value->as<PropertyList::Array>()->size(), 3u);
        sql(change);
        EXPECT_EQ(SecItemCopyMatching(everything).value->as<PropertyList::Array>()->size(), 2u)
            << change;
        EXPECT_EQ(get(item("a")), absent) << change;
        EXPECT_EQ(get(item("d")), absent) << change;
        EXPECT_EQ(get(item("b")), "b");
        // A change of attributes has nothing to seal again; a value makes the item whole.
        sql("UPDATE items SET service = 'test', account = 'a' WHERE account NOT IN ('b', 'c')");
        EXPECT_EQ(SecItemUpdate(item("a"), {{kSecValueData, bytesOf("new")}}), errSecSuccess)
            << change;
        EXPECT_EQ(get(item("a")), "new") << change;
        EXPECT_EQ(SecItemDelete({{kSecClass, kSecClassGenericPassword}}), errSecSuccess);
    }
}

TEST_F(DamageTest, ExchangedAttributesAreAbsentOnBothSides) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    ASSERT_EQ(add("b", "2"), errSecSuccess);
    sql("UPDATE items SET account = 'x' WHERE account = 'a'; UPDATE items SET account = 'a' WHERE "
        "account = "
        "'b'; UPDATE items SET account = 'b' WHERE account = 'x'");
    EXPECT_EQ(get(item("a")), absent);
    EXPECT_EQ(get(item("b")), absent);
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecAttrLabel, "l"}}), errSecItemNotFound);
    EXPECT_EQ(SecItemDelete(item("a")), errSecSuccess);
}

TEST_F(DamageTest, EveryBitOfASealedValueCounts) {
    ASSERT_EQ(add("a", "value"), errSecSuccess);
    for (int byte = 1; byte <= 24 + 16 + 5; ++byte) {
        const std::string position = std::to_string(byte);
        const std::string hex = sql("SELECT hex(sealed) FROM items");
        const int old =
            std::stoi(hex.substr(static_cast<std::size_t>(2 * byte - 2), 2), nullptr, 16);
        char changed[3];
        std::snprintf(changed, sizeof changed, "%02x",
                      static_cast<unsigned>(old ^ (1 << (byte % 8))));
        sql("UPDATE items SET sealed = CAST(substr(sealed, 1, " + position + " - 1) || x'" +
            changed + "' || substr(sealed, " + position + " + 1) AS BLOB)");
        EXPECT_EQ(get(item("a")), absent) << byte;
        sql("UPDATE items SET sealed = x'" + hex.substr(0, hex.size() - 1) + "'");
        EXPECT_EQ(get(item("a")), "value") << byte;
    }
}

TEST_F(DamageTest, AnythingInPlaceOfTheDatabaseDoesNoHarm) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    std::mt19937 random(1);
    ASSERT_EQ(sql("PRAGMA wal_checkpoint(TRUNCATE)"), "0\n0\n0\n");
    const std::string whole = text(path("items.sqlite"));
    for (int i = 0; i < 200; ++i) {
        std::string damaged = whole;
        for (unsigned n = random() % 64 + 1; n > 0; --n)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        for (const char* name : {"items.sqlite", "items.sqlite-wal", "items.sqlite-shm"})
            fs::remove(path(name));
        std::ofstream(path("items.sqlite"), std::ios::binary) << damaged;
        fs::permissions(path("items.sqlite"), fs::perms::owner_read | fs::perms::owner_write);
        const std::string found = get(item("a"));
        EXPECT_TRUE(found == "1" || std::stoi(found) < 0) << found;
        add("b", "2");
    }
}

TEST_F(DamageTest, ADatabaseOfAnotherKindIsLeftAlone) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    const char* const changes[] = {
        "PRAGMA user_version = 3",
        "PRAGMA user_version = 1", // which had other rows
        "PRAGMA user_version = 0; ALTER TABLE items RENAME TO others",
        "CREATE TRIGGER spy AFTER INSERT ON items BEGIN DELETE FROM items; END",
        "DROP TABLE items",
    };
    for (const char* change : changes) {
        const std::string copy = root + "/copy";
        fs::remove_all(copy);
        sql("PRAGMA wal_checkpoint(TRUNCATE)");
        fs::copy(folder(), copy);
        fs::rename(folder(), root + "/aside");
        fs::rename(copy, folder());
        fs::permissions(folder(), fs::perms::owner_all);
        sql(change);
        const std::string before = sql("SELECT * FROM sqlite_schema; PRAGMA user_version");
        EXPECT_EQ(get(item("a")), unavailable) << change;
        EXPECT_EQ(add("b", "2"), errSecNotAvailable) << change;
        EXPECT_EQ(sql("SELECT * FROM sqlite_schema; PRAGMA user_version"), before);
        fs::remove_all(folder());
        fs::rename(root + "/aside", folder());
        EXPECT_EQ(get(item("a")), "1");
    }
}

TEST_F(DamageTest, ADatabaseOfTheFirstVersionIsTakenOver) {
    ASSERT_EQ(ask(*peer(), "add a 1"), "0");
    ASSERT_EQ(ask(*peer(), "add b 2"), "0");
    const std::string reference = ask(*peer(), "ref b");
    const std::string rows = sql("SELECT * FROM items ORDER BY account");
    sql("ALTER TABLE items RENAME TO later;"
        "CREATE TABLE items (reference INTEGER PRIMARY KEY, service TEXT NOT NULL, account TEXT "
        "NOT "
        "NULL, access_group TEXT NOT NULL, label TEXT, generic BLOB, accessible TEXT NOT NULL, "
        "synchronizable INTEGER NOT NULL, created INTEGER NOT NULL, modified INTEGER NOT NULL, "
        "revision INTEGER NOT NULL, sealing_key BLOB NOT NULL, sealed BLOB NOT NULL, UNIQUE "
        "(service, account, access_group, synchronizable));"
        "INSERT INTO items SELECT * FROM later; DROP TABLE later; PRAGMA user_version = 1");
    EXPECT_EQ(get(item("a")), "1");
    EXPECT_EQ(ask(*peer(), "get-ref " + reference), "2");
    EXPECT_EQ(sql("SELECT * FROM items ORDER BY account"), rows);
    EXPECT_EQ(sql("PRAGMA user_version"), "2\n");
}

TEST_F(DamageTest, FilesAreTheUsersAlone) {
    const mode_t mask = ::umask(0);
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    ::umask(mask);
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root + "/data")) {
        EXPECT_EQ(entry.status().permissions() & fs::perms::mask,
                  entry.is_directory() ? fs::perms::owner_all
                                       : fs::perms::owner_read | fs::perms::owner_write)
            << entry.path();
        files += entry.is_regular_file();
    }
    EXPECT_GE(files, 2u);
}

TEST_F(DamageTest, AnythingThatOthersReachIsRefused) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    for (const char* name : {".", "items.sqlite", "items.sqlite-wal", "key"}) {
        SCOPED_TRACE(name);
        const fs::perms good = fs::status(path(name)).permissions();
        for (const fs::perms wide : {fs::perms::group_read, fs::perms::others_read,
                                     fs::perms::group_write, fs::perms::others_exec}) {
            fs::permissions(path(name), good | wide);
            EXPECT_EQ(ask(*peer(), "get a"), refused);
            EXPECT_EQ(ask(*peer(), "set a 2"), refused);
            fs::permissions(path(name), good);
        }
    }
    // Also in a process that has everything open already.
    fs::permissions(path("items.sqlite"), fs::perms::all);
    EXPECT_EQ(get(item("a")), refused);
    fs::permissions(path("items.sqlite"), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(get(item("a")), "1");
}

TEST_F(DamageTest, AnotherOwnerIsRefused) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    for (const char* name : {".", "items.sqlite", "items.sqlite-wal", "key"}) {
        ASSERT_EQ(::chown(path(name).c_str(), 65534, 65534), 0);
        EXPECT_EQ(ask(*peer(), "get a"), refused) << name;
        EXPECT_EQ(ask(*peer(), "set a 2"), refused) << name;
        ASSERT_EQ(::chown(path(name).c_str(), 0, 0), 0);
    }
    EXPECT_EQ(get(item("a")), "1");
}

TEST_F(DamageTest, LinksAreRefused) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    for (const char* name : {"items.sqlite", "items.sqlite-wal", "key"}) {
        SCOPED_TRACE(name);
        const fs::path target = root + "/elsewhere";
        fs::rename(path(name), target);
        fs::create_symlink(target, path(name));
        EXPECT_EQ(ask(*peer(), "get a"), refused);
        EXPECT_EQ(ask(*peer(), "set a 2"), refused);
        fs::remove(path(name));
        fs::rename(target, path(name));
    }
    for (const char* name : {"items.sqlite", "key"}) {
        for (const std::string& second : {root + "/second-name", path("key.backup")}) {
            fs::create_hard_link(path(name), second);
            EXPECT_EQ(ask(*peer(), "get a"), refused) << name;
            fs::remove(second);
        }
    }
    // What a process leaves that is ended over making the key.
    const std::string first = path("key.01234567-89ab-cdef-0123-456789abcdef");
    fs::create_hard_link(path("key"), first);
    EXPECT_EQ(ask(*peer(), "get a"), "1");
    EXPECT_FALSE(fs::exists(first));

    fs::rename(folder(), root + "/elsewhere");
    fs::create_directory_symlink(root + "/elsewhere", folder());
    EXPECT_EQ(ask(*peer(), "get a"), refused);
    EXPECT_EQ(ask(*peer(), "add b 2"), refused);
    fs::remove(folder());
    fs::create_symlink("/nowhere", folder());
    EXPECT_EQ(ask(*peer(), "add b 2"), refused);
}

// As where the home folders of a machine have been moved.
TEST_F(DamageTest, ALinkOnTheWayToTheFolderIsFollowed) {
    fs::create_directory(root + "/elsewhere");
    fs::create_directory_symlink(root + "/elsewhere", root + "/data");
    EXPECT_EQ(add("a", "1"), errSecSuccess);
    EXPECT_EQ(ask(*peer(), "get a"), "1");
    fs::remove(root + "/data"); // what it led to is not used on
    EXPECT_EQ(get(item("a")), absent);
}

// On volumes that cannot rename without replacing, whoever makes the key has linked it to its name
// before its first one goes, and has the folder locked meanwhile.
TEST_F(DamageTest, AKeyThatIsJustBeingMadeIsWaitedFor) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    const auto other = peer();
    ASSERT_EQ(ask(*other, "get b"), absent); // which has everything open but the key
    const int maker = ::open(folder().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(maker, LOCK_EX), 0);
    fs::create_hard_link(path("key"), path(".first-name"));
    other->tell("get a");
    EXPECT_FALSE(other->hear(100ms));
    fs::remove(path(".first-name"));
    ::close(maker);
    EXPECT_EQ(other->hear(), "1");
}

TEST_F(DamageTest, ADamagedKeyFileIsNeverReplaced) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    const std::string whole = text(path("key"));
    std::string flipped = whole;
    flipped[30] = static_cast<char>(flipped[30] ^ 1);
    for (const std::string& damaged : {std::string(), whole.substr(1), whole + "x", flipped}) {
        std::ofstream(path("key"), std::ios::binary) << damaged;
        EXPECT_EQ(ask(*peer(), "set b 2"), unavailable);
        EXPECT_EQ(text(path("key")), damaged);
    }
    std::ofstream(path("key"), std::ios::binary) << whole;
    EXPECT_EQ(get(item("a")), "1");
}

TEST_F(DamageTest, WithoutItsKeyAnItemIsThereButCannotBeRead) {
    auto one = peer();
    ASSERT_EQ(ask(*one, "set a 1"), "0");
    fs::rename(path("key"), root + "/key");
    auto other = peer();
    EXPECT_EQ(ask(*other, "get a"), std::to_string(errSecInteractionNotAllowed));
    EXPECT_EQ(ask(*other, "add a 2"), std::to_string(errSecDuplicateItem));
    // Whose value stays would have to be sealed again.
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecAttrLabel, "l"}}), errSecInteractionNotAllowed);
    EXPECT_EQ(ask(*other, "set b 2"), "0"); // under a new key
    fs::rename(path("key"), root + "/new-key");
    fs::rename(root + "/key", path("key"));
    EXPECT_EQ(ask(*peer(), "get a"), "1");
    EXPECT_EQ(ask(*other, "set a 3"), "0"); // a value may always be replaced
    EXPECT_EQ(ask(*peer(), "get a"), "3");
}

TEST_F(DamageTest, AFolderThatWentAwayIsMadeAnew) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    fs::remove_all(folder());
    EXPECT_EQ(get(item("a")), absent);
    ASSERT_EQ(add("a", "2"), errSecSuccess);
    EXPECT_EQ(get(item("a")), "2");
    EXPECT_EQ(ask(*peer(), "get a"), "2");
}
