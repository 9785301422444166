#include "DatabaseTest.h"

#include <condition_variable>
#include <mutex>
#include <sqlite3.h>

namespace {

/// A database that is followed, in a folder that others write to.
class Following : public DatabaseTest {
protected:
    Following() {
        path_ = folder_.path() / "inner" / "a.settings";
        SettingsDatabase::setProblemHandler({}); // the thread that watches would tell, too
    }

    std::shared_ptr<const void> follow(SettingsDatabase& database) {
        return database.follow([this](const std::vector<SettingsDatabase::Followed>& changes) {
            const std::lock_guard lock(mutex_);
            for (const auto& change : changes) {
                last_[change.key] = textOf(change.after);
                heard_.push_back(change.key + textOf(change.before) + textOf(change.after));
            }
            hasBeenTold_.notify_all();
        });
    }
    static std::string textOf(const SettingsDatabase::Value& value) {
        const auto* number = value ? value->as<NSNumber>() : nullptr;
        return number ? ' ' + std::to_string(number->int64Value()) : " -";
    }
    /// What was told until it is so much, or in vain.
    std::vector<std::string> told(std::size_t count) {
        std::unique_lock lock(mutex_);
        hasBeenTold_.wait_for(lock, 20s, [&] { return heard_.size() >= count; });
        return std::exchange(heard_, {});
    }
    /// Whether that comes to be what was told last of the keys. On the way there may be a new
    /// database that is still empty.
    bool becomes(const std::map<std::string, std::string>& last) {
        std::unique_lock lock(mutex_);
        const bool isSo = hasBeenTold_.wait_for(lock, 20s, [&] { return last_ == last; });
        last_.clear();
        return isSo;
    }

    std::mutex mutex_;
    std::condition_variable hasBeenTold_;
    std::vector<std::string> heard_;
    std::map<std::string, std::string> last_;
};

} // namespace

TEST_F(Following, TellsWhatOthersChangeOnceAndInOrder) {
    const auto database = open();
    database->set("own", 1);
    auto following = follow(*database);
    database->set("own", 2);
    elsewhere([](SettingsDatabase& other) {
        return other.apply({{"z", 1}, {"a", 2}, {"own", 3}}) && other.set("z", 1);
    });
    EXPECT_THAT(told(3), ElementsAre("z - 1", "a - 2", "own 2 3"));
    database->set("own", 4); // a read between would be as good
    elsewhere([](SettingsDatabase& other) { return other.set("own", 5) && other.remove("a"); });
    EXPECT_THAT(told(2), ElementsAre("own 4 5", "a 2 -"));
    elsewhere([](SettingsDatabase& other) {
        return other.transact([&] { other.set("b", 6); }) == SettingsDatabase::Outcome::stored;
    });
    EXPECT_THAT(told(1), ElementsAre("b - 6"));
    elsewhere([](SettingsDatabase& other) { return other.removeAll() && other.set("c", 7); });
    std::vector<std::string> cleared = told(4);
    std::ranges::sort(cleared);
    EXPECT_THAT(cleared, ElementsAre("b 6 -", "c - 7", "own 5 -", "z 1 -"));
    following.reset();
    elsewhere([](SettingsDatabase& other) { return other.set("c", 8); });
    EXPECT_EQ(*database->value("c"), PropertyList(8));
    EXPECT_THAT(told(0), IsEmpty());
}

// Also while this process writes as much, and others begin and end following.
TEST_F(Following, MissesNothingOfABusyWriter) {
    constexpr int count = 400;
    const auto database = open();
    const auto following = follow(*database);
    std::atomic<bool> goesOn = true;
    Child writer([&] {
        const auto other = open();
        bool isStored = true;
        for (int i = 0; i < count; ++i)
            isStored = other->set(std::to_string(i), i) && isStored;
        return isStored;
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            while (goesOn)
                auto passing = database->follow([](const auto&) {});
        });
    for (int i = 0; i < count; ++i) {
        database->set("own " + std::to_string(i % 7), i);
        database->transact([&] { const auto passing = database->follow([](const auto&) {}); });
    }
    EXPECT_TRUE(writer.end());
    goesOn = false;
    for (std::thread& thread : threads)
        thread.join();
    std::vector<std::string> expected;
    for (int i = 0; i < count; ++i)
        expected.push_back(std::to_string(i) + " - " + std::to_string(i));
    EXPECT_EQ(told(count), expected);
}

// As one that is killed before it can show what it has written: only the log changes.
TEST_F(Following, TellsOfAWriterThatShowsNothing) {
    const auto database = open();
    database->set("k", 1);
    const auto following = follow(*database);
    Child writer([&]() -> bool {
        sqlite3* raw = nullptr;
        sqlite3_open(path_.c_str(), &raw);
        sqlite3_busy_timeout(raw, 5000);
        for (;; std::this_thread::sleep_for(10ms))
            sqlite3_exec(raw,
                         "PRAGMA wal_autocheckpoint = 0; PRAGMA synchronous = OFF; "
                         "INSERT INTO settings(key, value) VALUES('k', random())",
                         nullptr, nullptr, nullptr);
    });
    EXPECT_GE(told(20).size(), 20u);
    writer.kill();
    writer.end();
}

// The thread that watches has nobody to tell.
TEST_F(Following, GoesOnWhenMemoryRunsOut) {
    const auto database = open();
    std::atomic<bool> isStruck = false;
    const auto starving = database->follow([&](const auto&) {
        if (!isStruck.exchange(true))
            throw std::bad_alloc();
    });
    elsewhere([](SettingsDatabase& other) { return other.set("a", 1); });
    for (int i = 0; i < 2000 && !isStruck; ++i)
        std::this_thread::sleep_for(10ms);
    EXPECT_TRUE(isStruck);
    const auto following = follow(*database);
    elsewhere([](SettingsDatabase& other) { return other.set("a", 2); });
    EXPECT_THAT(told(1), ElementsAre("a 1 2"));
}

TEST_F(Following, SeesAFolderThatComesWhole) {
    const fs::path at = folder_.path();
    for (const int number : {1, 2})
        ASSERT_TRUE(inChild([&] {
            return SettingsDatabase::open(at / std::to_string(number) / "a.settings")
                ->set("a", number);
        }));
    const auto database = open();
    const auto following = follow(*database);
    fs::rename(at / "inner", at / "aside");
    fs::rename(at / "1", at / "inner");
    EXPECT_THAT(told(1), ElementsAre("a - 1"));
    fs::remove_all(at / "inner");
    fs::rename(at / "2", at / "inner");
    EXPECT_THAT(told(1), ElementsAre("a 1 2"));
}

TEST_F(Following, GoesOnInAChildFromItsFirstUse) {
    const auto database = open();
    database->set("a", 1);
    const auto following = follow(*database);
    const Signal begun;
    Child child([&] {
        return integer(*database, "a") == 1 && begun.give() && becomes({{"a", " 2"}});
    });
    ASSERT_TRUE(begun.await());
    database->set("a", 2);
    EXPECT_TRUE(child.end());
}

TEST_F(Following, GoesOnWhenTheStoreIsRemovedOrReplaced) {
    const auto database = open();
    database->set("a", 1);
    database->set("b", 1);
    const auto following = follow(*database);
    removeFiles();
    elsewhere([](SettingsDatabase& other) { return other.set("a", 2); });
    EXPECT_TRUE(becomes({{"a", " 2"}, {"b", " -"}}));

    const std::string another = folder_.path() / "another.settings";
    EXPECT_TRUE(inChild([&] {
        return SettingsDatabase::open(another)->apply({{"a", 2}, {"b", 3}});
    }));
    for (const char* ending : {"-wal", "-shm"}) // which belong to the file that goes
        fs::remove(path_ + ending);
    fs::rename(another, path_);
    EXPECT_TRUE(becomes({{"b", " 3"}}));
    ASSERT_TRUE(database->value("b"));
    EXPECT_EQ(*database->value("b"), PropertyList(3));

    fs::remove_all(folder_.path() / "inner");
    elsewhere([](SettingsDatabase& other) { return other.set("c", 4); });
    EXPECT_TRUE(becomes({{"a", " -"}, {"b", " -"}, {"c", " 4"}}));
    EXPECT_TRUE(database->set("d", 5));
    elsewhere([](SettingsDatabase& other) {
        return other.value("d") && other.value("c") && other.set("d", 6);
    });
    EXPECT_TRUE(becomes({{"d", " 6"}}));
}
