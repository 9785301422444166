#include "DatabaseTest.h"

#include <sqlite3.h>

namespace {

using Outcome = SettingsDatabase::Outcome;

class Transactions : public DatabaseTest {
protected:
    static std::int64_t count(SettingsDatabase& database) { return integer(database, "count"); }
    static Outcome countUp(SettingsDatabase& database) {
        return database.transact([&] { database.set("count", count(database) + 1); });
    }
};

} // namespace

TEST_F(Transactions, AreWholeOrNothing) {
    const auto database = open();
    database->set("a", 1);
    database->set("b", 1);
    const PropertyList::Dictionary before = database->contents();
    const auto change = [&] {
        EXPECT_TRUE(database->set("a", 2));
        EXPECT_TRUE(database->remove("b"));
        EXPECT_TRUE(database->apply({{"c", 1}, {"c", 3}}));
        EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"a", 2}, {"c", 3}}));
        EXPECT_FALSE(database->value("b"));
        EXPECT_FALSE(database->synchronize());
        std::thread([&] { EXPECT_EQ(*database->value("a"), PropertyList(1)); }).join();
        EXPECT_THROW(database->transact([&] {
            database->removeAll();
            EXPECT_TRUE(database->contents().empty());
            throw 1;
        }),
                     int);
        EXPECT_EQ(*database->value("a"), PropertyList(2));
        database->transact([&] {
            EXPECT_THROW(database->transact([&] {
                database->set("a", 3);
                database->transact([&] { database->apply({{"a", 4}, {"d", 5}}); });
                throw 1;
            }),
                         int);
            database->set("d", 6);
        });
        EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"a", 2}, {"c", 3}, {"d", 6}}));
        for (int i = 0; i < 20'000; ++i)
            database->transact([&] { database->set("many " + std::to_string(i), i); });
    };
    EXPECT_THROW(database->transact([&] {
        change();
        throw 2;
    }),
                 int);
    EXPECT_EQ(database->contents(), before);
    EXPECT_EQ(database->transact(change), Outcome::stored);
    EXPECT_EQ(database->transact([&] { database->transact([&] { database->removeAll(); }); }),
              Outcome::stored);
    EXPECT_TRUE(inChild([&] { return open()->contents().empty(); }));
}

TEST_F(Transactions, LoseNothingOfTenProcesses) {
    constexpr int each = 30;
    std::vector<std::unique_ptr<Child>> children;
    const auto add = [&](SettingsDatabase& database) {
        bool isStored = true;
        for (int i = 0; i < each; ++i)
            isStored = countUp(database) == Outcome::stored && isStored;
        return isStored;
    };
    for (int child = 0; child < 10; ++child)
        children.push_back(std::make_unique<Child>([&] { return add(*open()); }));
    const auto database = open();
    std::thread other([&] { EXPECT_TRUE(add(*database)); });
    EXPECT_TRUE(add(*database));
    other.join();
    for (const auto& child : children)
        EXPECT_TRUE(child->end());
    EXPECT_EQ(count(*database), 12 * each - 1); // from -1
}

// Killed within a transaction, a process holds up nobody.
TEST_F(Transactions, EndWithTheirProcess) {
    countUp(*open());
    const Signal begun;
    Child writer([&] {
        const auto database = open();
        database->transact([&] {
            countUp(*database);
            database->set("other", 1);
            begun.give();
            pause();
        });
        return false;
    });
    ASSERT_TRUE(begun.await());
    writer.kill();
    writer.end();
    const auto database = open();
    EXPECT_EQ(countUp(*database), Outcome::stored);
    EXPECT_EQ(count(*database), 1);
    EXPECT_FALSE(database->value("other"));
}

TEST_F(Transactions, ChangeNothingWhenTheyAreRefused) {
    const auto database = open();
    countUp(*database);
    sqlite3* lock = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &lock), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(lock, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(countUp(*database), Outcome::refused); // after a while
    sqlite3_close(lock);
    EXPECT_EQ(count(*database), 0);
    EXPECT_EQ(database->transact([&] {
        database->set("small", 1);
        database->set("large", Data(SettingsDatabase::maximumValueSize, std::byte{1}));
    }),
              Outcome::refused);
    EXPECT_FALSE(database->value("small"));
    EXPECT_EQ(told_, (std::vector{path_ + ": database is locked; nothing was changed",
                                  path_ + ": large: the value is larger than 256 MiB; nothing was "
                                          "changed"}));
    EXPECT_EQ(countUp(*database), Outcome::stored);
    EXPECT_EQ(database->problem(), std::nullopt);

    const auto nowhere = SettingsDatabase::inMemory();
    EXPECT_EQ(countUp(*nowhere), Outcome::kept);
    EXPECT_EQ(count(*nowhere), 0);
}

// A child that is made within one cannot go on with it.
TEST_F(Transactions, AreNotTakenAlongIntoAChild) {
    const auto database = open();
    pid_t child = -1;
    const Outcome outcome = database->transact([&] {
        countUp(*database);
        child = ::fork();
    });
    if (child == 0)
        ::_exit(outcome == Outcome::kept && count(*database) == 0 ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(outcome, Outcome::stored);
    EXPECT_EQ(countUp(*database), Outcome::stored);
    EXPECT_TRUE(inChild([&] { return count(*open()) == 1; }));
}

// While another thread forks, which takes hold of all that are open.
TEST_F(Transactions, MayOpenAnotherWhileTheProcessForks) {
    for (int round = 0; round < 20; ++round) {
        const auto database = open();
        std::thread forking;
        EXPECT_EQ(database->transact([&] {
            forking = std::thread([] { EXPECT_TRUE(inChild([] { return true; })); });
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            SettingsDatabase::open(folder_.path() / "other.settings")->set("k", round);
            database->set("k", round);
        }),
                  Outcome::stored);
        forking.join();
    }
}
