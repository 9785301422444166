#include "DatabaseTest.h"

#include <tests/files/ChildProcess.h>
#include <tests/sql.h>

#include <zorvan/platform/foundation/LibraryLog.h>

#include <csignal>
#include <sys/file.h>
#include <sys/resource.h>

namespace {

class Faults : public DatabaseTest {
protected:
    void fill(int keys = 1, std::size_t size = 300) const {
        const auto database = open();
        for (int i = 0; i < keys; ++i)
            database->set("key " + std::to_string(i), std::string(size, 'x'));
    }
    void setBytes(const std::string& bytes) const {
        std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes;
    }
    std::string execute(const char* statements) const { return sqlIn(path_, statements); }
    /// Reads and writes go on in memory.
    void expectMemoryOnly(const std::string& problem) {
        const std::string before = fs::is_regular_file(path_) ? text(path_) : "";
        const auto database = open();
        EXPECT_FALSE(database->set("new", 1));
        EXPECT_FALSE(database->set("new", 2));
        EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"new", 2}}));
        EXPECT_FALSE(database->synchronize());
        const std::string line = path_ + ": " + problem + "; changes are kept in memory";
        EXPECT_EQ(told_, std::vector{line}); // once
        EXPECT_EQ(database->problem(), line);
        told_.clear();
        EXPECT_TRUE(before.empty() || text(path_) == before);
    }
};

} // namespace

TEST_F(Faults, SetsDamageAside) {
    const std::string wrong(10'000, '?');
    setBytes(wrong);
    ASSERT_EQ(::chmod(path_.c_str(), 0600), 0);
    {
        const auto database = open();
        EXPECT_TRUE(database->contents().empty());
        EXPECT_TRUE(database->set("k", 1));
    }
    EXPECT_EQ(text(path_ + ".damaged"), wrong);
    EXPECT_EQ(told_,
              std::vector{path_ + ": it was damaged and is set aside as " + path_ + ".damaged"});
    setBytes(wrong + "2");
    open();
    EXPECT_EQ(text(path_ + ".damaged"), wrong); // the first is not lost to the second
    EXPECT_EQ(text(path_ + ".damaged-2"), wrong + "2");
    EXPECT_EQ(told_.size(), 2u);
}

// Every page in turn is overwritten: the application goes on, and no bytes are lost.
TEST_F(Faults, GoesOnWithAnyPageDamaged) {
    fill(200);
    const std::string sound = text(path_);
    for (std::size_t page = 0; page * 4096 < sound.size(); ++page) {
        std::string damaged = sound;
        damaged.replace(page * 4096, 4096, 4096, '\xA5');
        const std::string name = path_ + ".damaged";
        fs::remove(name);
        setBytes(damaged);
        {
            const auto database = open();
            EXPECT_TRUE(database->set("k", 1));
            EXPECT_EQ(*database->value("k"), PropertyList(1));
        }
        EXPECT_TRUE(text(name) == damaged)
            << "page " << page << ' ' << testing::PrintToString(told_);
        fs::remove(path_);
    }
}

TEST_F(Faults, CarriesOnFromMemoryWhenDamageComesLater) {
    fill(1500, 3000); // more than the engine has in memory by itself
    {
        const auto database = open();
        std::string bytes = text(path_);
        std::fill(bytes.begin() + 100, bytes.end(), '\xA5');
        std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out) << bytes;
        for (int i = 0; i < 1500; i += 100)
            EXPECT_TRUE(database->set("key " + std::to_string(i), i));
        EXPECT_EQ(told_, std::vector{path_ + ": it was damaged and is set aside as " + path_ +
                                     ".damaged"});
    }
    const auto contents = open()->contents(); // the new database has everything
    EXPECT_EQ(contents.size(), 1500u);
    EXPECT_EQ(contents.at("key 700"), PropertyList(700));
    EXPECT_EQ(contents.at("key 701"), PropertyList(std::string(3000, 'x')));
    EXPECT_TRUE(fs::exists(path_ + ".damaged"));
}

TEST_F(Faults, LeavesANewerVersionAlone) {
    fill();
    execute("PRAGMA user_version = 2");
    expectMemoryOnly("it was written by a newer version");
}

TEST_F(Faults, RefusesATableThatIsNotItsOwn) {
    for (const char* statements : {"CREATE TABLE settings(id INTEGER PRIMARY KEY, key TEXT, value)",
                                   "ALTER TABLE settings RENAME TO x; "
                                   "CREATE VIEW settings AS SELECT id, key, value FROM x"}) {
        execute(statements);
        ASSERT_EQ(::chmod(path_.c_str(), 0600), 0);
        expectMemoryOnly("it is no database of settings");
        removeFiles();
        fill(); // of its own
    }
}

TEST_F(Faults, RefusesALinkInItsPlace) {
    const std::string target = folder_.path() / "target";
    std::ofstream(target) << "precious";
    for (const char* ending : {"-shm", "-wal", "-journal", ""}) {
        fs::remove(path_);
        fs::create_symlink(target, path_ + ending);
        expectMemoryOnly("a symbolic link stands in its place");
        EXPECT_EQ(text(target), "precious");
        fs::remove(path_ + ending);
    }
    fs::create_hard_link(target, path_);
    expectMemoryOnly("it has another name as well");
    fs::remove(path_);
    fs::create_directory(path_);
    expectMemoryOnly("what stands in its place is no file");
}

TEST_F(Faults, RefusesAForeignOwner) {
    if (::geteuid() != 0) { // the only folder that surely is somebody else's
        path_ = "/etc/a.settings";
        expectMemoryOnly("its folder belongs to another user");
        return;
    }
    fill();
    ASSERT_EQ(::chown(path_.c_str(), 12345, 12345), 0);
    expectMemoryOnly("it belongs to another user");
}

TEST_F(Faults, ReadsAFolderThatItMayNotWrite) {
    folder_.setMode("", 0777);
    asOrdinaryUser([&] {
        path_ = folder_.path() / "inner/a.settings";
        fill();
        folder_.setMode("inner", 0500);
        const auto database = open();
        EXPECT_TRUE(database->value("key 0"));
        EXPECT_FALSE(database->set("new", 1));
        EXPECT_TRUE(database->value("new"));
        EXPECT_FALSE(database->synchronize());
        EXPECT_EQ(told_.size(), 1u);
    });
}

// As a limit on the size of files makes one.
TEST_F(Faults, KeepsInMemoryWhatAFullDiskCannotTake) {
    EXPECT_TRUE(inChild([&] {
        const auto limit = [](rlim_t size) {
            const rlimit value{size, RLIM_INFINITY};
            ::setrlimit(RLIMIT_FSIZE, &value);
        };
        std::signal(SIGXFSZ, SIG_IGN);
        limit(128 << 10);
        const auto database = open();
        int stored = 0, kept = 0;
        for (int i = 0; i < 100; ++i)
            ++(database->set(std::to_string(i), std::string(4000, 'x')) ? stored : kept);
        if (stored == 0 || kept == 0 || database->contents().size() != 100 || told_.size() != 1)
            return false;
        // A transaction is taken whole or not at all.
        const std::string larger(5000, 'y');
        const auto isLarger = [&](const char* key) { return *database->value(key) == larger; };
        const auto outcome = database->transact([&] {
            database->set("0", larger);
            database->set("1", larger);
        });
        if (outcome != SettingsDatabase::Outcome::refused || isLarger("0") || isLarger("1") ||
            !told_.back().ends_with("; nothing was changed"))
            return false;
        limit(RLIM_INFINITY);
        // What was kept is stored before what comes later.
        return database->transact([&] { database->set("last", 1); }) ==
                   SettingsDatabase::Outcome::stored &&
               execute("SELECT count(*) FROM settings WHERE id > 0") == "101\n" &&
               database->synchronize() && database->problem() == std::nullopt;
    }));
    EXPECT_TRUE(inChild([&] { return open()->contents().size() == 101; }));
}

TEST_F(Faults, ComesBackWhenTheFileIsTakenAway) {
    {
        const auto database = open();
        database->set("old", 1);
        removeFiles();
        EXPECT_TRUE(database->set("new", 2));
        EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"new", 2}}));
    }
    EXPECT_EQ(open()->contents(), (PropertyList::Dictionary{{"new", 2}}));
}

TEST_F(Faults, TakesHundredMegabytesAndRefusesMoreThanItsLimit) {
    const Data large(std::size_t{100} << 20, std::byte{1});
    ASSERT_TRUE(open()->set("large", large));
    const auto database = open();
    ASSERT_TRUE(database->value("large"));
    EXPECT_TRUE(*database->value("large") == PropertyList(large));
    EXPECT_TRUE(database->remove("large"));
    EXPECT_FALSE(database->apply(
        {{"first", 1}, {"larger", Data(SettingsDatabase::maximumValueSize, std::byte{1})}}));
    EXPECT_TRUE(database->value("larger"));
    EXPECT_TRUE(database->set("other", 1)); // and it does not stand in the way
    EXPECT_FALSE(database->set(std::string(SettingsDatabase::maximumValueSize + 1, 'k'), 1));
    ASSERT_EQ(told_.size(), 2u);
    EXPECT_EQ(told_[0],
              path_ + ": larger: the value is larger than 256 MiB; changes are kept in memory");
    EXPECT_TRUE(told_[1].ends_with(": the key is larger than 256 MiB; changes are kept in memory"));
}

// As one that was stopped while it opened a database of the folder.
TEST_F(Faults, WaitsForAnotherProcessForAWhileOnly) {
    const int other = ::open(folder_.path().c_str(), O_RDONLY);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    const auto database = open();
    ::close(other);
    EXPECT_EQ(told_, std::vector{path_ + ": Connection timed out; changes are kept in memory"});
    EXPECT_TRUE(database->synchronize());
}

// No write could come after it.
TEST_F(Faults, SetsTheLastIdentifierOfAllAside) {
    fill();
    execute("UPDATE settings SET id = 9223372036854775807 WHERE id > 0");
    EXPECT_TRUE(open()->set("k", 1));
    EXPECT_TRUE(open()->set("k", 2));
    EXPECT_EQ(told_.size(), 1u);
}

// As two processes leave it that have set a new key at the same time.
TEST_F(Faults, ClearsAwayRowsThatWereReplaced) {
    fill(2);
    execute("INSERT INTO settings(key, value) SELECT key, x'00' FROM settings WHERE id > 0");
    EXPECT_TRUE(open()->set("k", 1));
    execute("CREATE UNIQUE INDEX keys ON settings(key)");
}

TEST_F(Faults, PassesOverValuesItCannotRead) {
    fill(2);
    execute("UPDATE settings SET value = x'FF00' WHERE key = 'key 0'");
    {
        const auto database = open();
        EXPECT_FALSE(database->value("key 0"));
        EXPECT_TRUE(database->value("key 1"));
        EXPECT_TRUE(database->set("key 0", 1));
    }
    EXPECT_EQ(open()->contents().at("key 0"), PropertyList(1));
}

TEST_F(Faults, TellsTheLogWhenNobodyElseIsToBeTold) {
    SettingsDatabase::setProblemHandler({});
    LibraryLog::setHandler([this](const LibraryLog::Entry& entry) {
        EXPECT_EQ(entry.level, LibraryLog::Level::warning);
        EXPECT_EQ(entry.category, "settings");
        told_.emplace_back(entry.message);
    });
    const auto database = SettingsDatabase::open("/dev/null/nowhere");
    LibraryLog::setHandler({});
    ASSERT_EQ(told_.size(), 1u);
    EXPECT_EQ(told_[0], database->problem());
}
