#include "SecureItems.h"

#include <zorvan/platform/security/internal/ItemStore.h>

#include <sys/file.h>

namespace {

class DamageTest : public SecureItems {
protected:
    const std::string refused = std::to_string(errSecAuthFailed);
    const std::string unavailable = std::to_string(errSecNotAvailable);

    void expectRefused() const {
        for (const char* command : {"get a", "set a 2"})
            EXPECT_EQ(ask(*peer(), command), refused);
    }

    /// All of the database, in one file.
    std::string wholeDatabase() const {
        EXPECT_EQ(sql("PRAGMA wal_checkpoint(TRUNCATE)"), "0\n0\n0\n");
        return text(path("items.sqlite"));
    }
    void replaceDatabase(const std::string& bytes) const {
        for (const char* name : {"items.sqlite", "items.sqlite-wal", "items.sqlite-shm"})
            fs::remove(path(name));
        std::ofstream(path("items.sqlite"), std::ios::binary) << bytes;
        fs::permissions(path("items.sqlite"), fs::perms::owner_read | fs::perms::owner_write);
    }
};

} // namespace

TEST_F(DamageTest, AChangedRowIsAbsent) {
    // Each change is to the item a, of which b and c are copies that nothing was done to.
    const char* const changes[] = {
        "sealed = (SELECT sealed FROM items WHERE account = 'b')",
        "(sealed, sealing_key, created, modified) = "
        "(SELECT sealed, sealing_key, created, modified FROM items WHERE account = 'b')",
        "sealed = substr(sealed, 1, length(sealed) - 1)",
        "sealed = x''",
        "sealed = 'text'",
        "sealing_key = x'00'",
        "service = 'test' || x'00'",
        "label = NULL",
        "label = CAST(label AS BLOB)",
        "label = 'lg', generic = ''", // bytes that change sides
        "generic = NULL",
        "access_group = 'g'",
        "accessible = 'afterFirstUnlock'",
        "synchronizable = 1",
        "created = created + 1",
        "modified = modified - 1",
        "reference = 5",
        "account = 'd'",
    };
    const auto count = [] {
        const auto found = SecItemCopyMatching({{kSecClass, kSecClassGenericPassword},
                                                {kSecMatchLimit, kSecMatchLimitAll},
                                                {kSecReturnPersistentRef, true}});
        return found.value->as<PropertyList::Array>()->size();
    };
    for (const std::string change : changes) {
        SCOPED_TRACE(change);
        for (const char* account : {"a", "b", "c"})
            ASSERT_EQ(add(account, account, {{kSecAttrLabel, "l"}, {kSecAttrGeneric, "g"}}),
                      errSecSuccess);
        EXPECT_EQ(count(), 3u);
        sql("UPDATE items SET " + change + " WHERE account = 'a'");
        EXPECT_EQ(count(), 2u);
        for (const char* account : {"a", "d"})
            EXPECT_EQ(get(item(account)), absent);
        EXPECT_EQ(get(item("b")), "b");
        // A change of attributes has nothing to seal again; a value makes the item whole.
        sql("UPDATE items SET service = 'test', account = 'a' WHERE account NOT IN ('b', 'c')");
        EXPECT_EQ(SecItemUpdate(item("a"), {{kSecValueData, bytesOf("new")}}), errSecSuccess);
        EXPECT_EQ(get(item("a")), "new");
        EXPECT_EQ(SecItemDelete({{kSecClass, kSecClassGenericPassword}}), errSecSuccess);
    }
}

TEST_F(DamageTest, ExchangedAttributesAreAbsentOnBothSides) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    ASSERT_EQ(add("b", "2"), errSecSuccess);
    for (const auto& [from, to] : {std::pair("a", "x"), {"b", "a"}, {"x", "b"}})
        sql(std::string("UPDATE items SET account = '") + to + "' WHERE account = '" + from + "'");
    EXPECT_EQ(get(item("a")), absent);
    EXPECT_EQ(get(item("b")), absent);
    EXPECT_EQ(SecItemUpdate(item("a"), {{kSecAttrLabel, "l"}}), errSecItemNotFound);
    EXPECT_EQ(SecItemDelete(item("a")), errSecSuccess);
}

TEST_F(DamageTest, EveryBitOfASealedValueCounts) {
    ASSERT_EQ(add("a", "value"), errSecSuccess);
    const std::string hex = sql("SELECT hex(sealed) FROM items");
    const std::size_t digits = 2 * (24 + 16 + 5);
    ASSERT_EQ(hex.size(), digits + 1);
    for (std::size_t digit = 0; digit <= digits; ++digit) {
        std::string changed = hex.substr(0, digits);
        if (digit < digits)
            changed[digit] = changed[digit] == '0' ? '1' : '0';
        sql("UPDATE items SET sealed = x'" + changed + "'");
        EXPECT_EQ(get(item("a")), digit < digits ? absent : "value") << digit;
    }
}

TEST_F(DamageTest, AnythingInPlaceOfTheDatabaseDoesNoHarm) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    std::mt19937 random(1);
    const std::string whole = wholeDatabase();
    for (int i = 0; i < 200; ++i) {
        std::string damaged = whole;
        for (unsigned n = random() % 64 + 1; n > 0; --n)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        replaceDatabase(damaged);
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
    const std::string whole = wholeDatabase();
    for (const char* change : changes) {
        SCOPED_TRACE(change);
        sql(change);
        const std::string before = sql("SELECT * FROM sqlite_schema; PRAGMA user_version");
        EXPECT_EQ(ask(*peer(), "get a"), unavailable);
        EXPECT_EQ(ask(*peer(), "add b 2"), unavailable);
        EXPECT_EQ(sql("SELECT * FROM sqlite_schema; PRAGMA user_version"), before);
        replaceDatabase(whole);
        EXPECT_EQ(get(item("a")), "1");
    }
}

TEST_F(DamageTest, ADatabaseOfTheFirstVersionIsTakenOver) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    ASSERT_EQ(add("b", "2"), errSecSuccess);
    const Data name = reference(item("b"));
    const std::string rows = sql("SELECT * FROM items ORDER BY account");
    security::ItemStore::close();
    sql("ALTER TABLE items RENAME TO later;"
        "CREATE TABLE items (reference INTEGER PRIMARY KEY, service TEXT NOT NULL, "
        "account TEXT NOT NULL, access_group TEXT NOT NULL, label TEXT, generic BLOB, "
        "accessible TEXT NOT NULL, synchronizable INTEGER NOT NULL, created INTEGER NOT NULL, "
        "modified INTEGER NOT NULL, revision INTEGER NOT NULL, sealing_key BLOB NOT NULL, "
        "sealed BLOB NOT NULL, UNIQUE (service, account, access_group, synchronizable));"
        "INSERT INTO items SELECT * FROM later; DROP TABLE later; PRAGMA user_version = 1");
    EXPECT_EQ(get(item("a")), "1");
    EXPECT_EQ(get({{kSecValuePersistentRef, name}}), "2");
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
            expectRefused();
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
        SCOPED_TRACE(name);
        ASSERT_EQ(::chown(path(name).c_str(), 65534, 65534), 0);
        expectRefused();
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
        expectRefused();
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
    expectRefused();
    fs::remove(folder());
    fs::create_symlink("/nowhere", folder());
    expectRefused();
}

// As where the home folders of a machine have been moved.
TEST_F(DamageTest, ALinkOnTheWayToTheFolderIsFollowed) {
    fs::create_directory(root + "/elsewhere");
    fs::create_directory_symlink(root + "/elsewhere", root + "/data");
    EXPECT_EQ(add("a", "1"), errSecSuccess);
    EXPECT_EQ(ask(*peer(), "get a"), "1");
    fs::remove(root + "/data"); // what it led to is not used on
    EXPECT_EQ(get(item("a")), absent);
    ASSERT_EQ(add("a", "2"), errSecSuccess);
    EXPECT_EQ(get(item("a")), "2");
    EXPECT_EQ(ask(*peer(), "get a"), "2");
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
