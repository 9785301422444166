#include "DatabaseTest.h"

#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>

namespace {

using Processes = DatabaseTest;

/// Takes steps with a process on the other side.
class Steps {
public:
    Steps() {
        if (pipe(there_) != 0 || pipe(back_) != 0)
            throw std::runtime_error("no pipe");
    }
    void go() { pass(there_[1]); }
    bool awaitGo() { return await(there_[0]); }
    void done() { pass(back_[1]); }
    bool awaitDone() { return await(back_[0]); }

private:
    static void pass(int end) {
        if (write(end, "x", 1) != 1)
            throw std::runtime_error("the other side is gone");
    }
    static bool await(int end) {
        char c;
        return read(end, &c, 1) == 1;
    }
    int there_[2], back_[2];
};

} // namespace

TEST_F(Processes, NoticeEachOthersWrites) {
    Steps steps;
    Child other([&] {
        const auto database = open();
        database->set("shared", 1);
        steps.done();
        steps.awaitGo();
        const bool seen = integer(*database, "shared") == 2 && integer(*database, "new") == 5;
        database->remove("new");
        database->set("shared", 3);
        steps.done();
        steps.awaitGo();
        const bool cleared = database->contents().empty();
        database->set("after", 9);
        steps.done();
        return seen && cleared;
    });
    ASSERT_TRUE(steps.awaitDone());
    const auto database = open();
    EXPECT_EQ(integer(*database, "shared"), 1);
    database->set("shared", 2);
    database->set("new", 5);
    steps.go();
    ASSERT_TRUE(steps.awaitDone());
    EXPECT_EQ(integer(*database, "shared"), 3);
    EXPECT_FALSE(database->value("new"));
    database->removeAll();
    steps.go();
    ASSERT_TRUE(steps.awaitDone());
    EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"after", 9}}));
    EXPECT_TRUE(other.end());
}

// Also while the thread that follows the database is about to open it again after the fork.
TEST_F(Processes, ReadWhatWasWrittenBefore) {
    const auto database = open();
    const auto following = database->follow([](const auto&) {});
    for (std::int64_t n = 0; n < 200; ++n) {
        ASSERT_TRUE(inChild([&] { return open()->set("n", n); }));
        ASSERT_EQ(integer(*database, "n"), n);
    }
}

// As in a sandbox, which shows a process what it may not touch.
TEST_F(Processes, FollowWritersWhereTheyMayOnlyRead) {
    const auto lockUp = [&] {
        const char* place = folder_.path().c_str();
        return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
               mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               mount(place, place, nullptr, MS_BIND, nullptr) == 0 &&
               mount("", place, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
    };
    if (!inChild(lockUp))
        GTEST_SKIP() << "no mounts of one's own";
    Steps steps;
    Child reader([&] {
        steps.awaitGo();
        lockUp();
        const auto database = open();
        const bool readsFirst = integer(*database, "k") == 1;
        steps.done();
        steps.awaitGo();
        const bool readsSecond = integer(*database, "k") == 2;
        return readsFirst && readsSecond && !database->set("k", 3);
    });
    const auto database = open();
    database->set("k", 1);
    steps.go();
    ASSERT_TRUE(steps.awaitDone());
    database->set("k", 2);
    steps.go();
    EXPECT_TRUE(reader.end());
}

// Two processes count with a lock of their own around reading and writing.
TEST_F(Processes, CountTogether) {
    const std::string lockPath = folder_.path() / "lock";
    constexpr int each = 500;
    const auto count = [&] {
        const auto database = open();
        const int lock = ::open(lockPath.c_str(), O_RDWR | O_CREAT, 0600);
        for (int i = 0; i < each; ++i) {
            flock(lock, LOCK_EX);
            const std::int64_t before = integer(*database, "count");
            const bool stored = database->set("count", before < 0 ? 1 : before + 1);
            flock(lock, LOCK_UN);
            if (!stored)
                return false;
        }
        return true;
    };
    Child one(count), two(count);
    EXPECT_TRUE(one.end());
    EXPECT_TRUE(two.end());
    EXPECT_EQ(integer(*open(), "count"), 2 * each);
}

// Without a lock one of them wins each key, but every process must come to the same in the end.
TEST_F(Processes, AgreeInTheEnd) {
    const auto write = [&](unsigned seed) {
        const auto database = open();
        std::mt19937 random(seed);
        for (int i = 0; i < 1000; ++i) {
            const std::string key = std::to_string(random() % 10);
            const auto kind = random() % 50;
            const bool stored = kind == 0 ? database->removeAll()
                                : kind < 9
                                    ? database->remove(key)
                                    : database->set(key, static_cast<int>(seed) * 10'000 + i);
            if (!stored)
                return false;
        }
        return true;
    };
    Child one([&] { return write(1); }), two([&] { return write(2); });
    auto watcher = open(); // what it opened must not go along into the children
    EXPECT_TRUE(one.end());
    EXPECT_TRUE(two.end());
    const PropertyList::Dictionary seen = watcher->contents();
    watcher.reset();
    EXPECT_TRUE(inChild([&] { return open()->contents() == seen; }));
}

// As a program does that goes into the background: the parent ends, others come and go, and what
// all share begins anew.
TEST_F(Processes, GoOnInAForkWhoseParentHasEnded) {
    Steps steps;
    ASSERT_TRUE(inChild([&] {
        const auto database = open();
        database->set("k", 1);
        if (::fork() != 0)
            return true;
        steps.awaitGo();
        bool isGood = integer(*database, "k") == 2 && database->set("own", 3);
        for (int i = 0; i < 100; ++i)
            isGood = database->set("own", i) && integer(*database, "own") == i && isGood;
        if (isGood)
            steps.done();
        return isGood;
    }));
    EXPECT_TRUE(inChild([&] { return open()->set("k", 2); }));
    const auto other = open();
    steps.go();
    ASSERT_TRUE(steps.awaitDone());
    EXPECT_EQ(integer(*other, "own"), 99);
}

TEST_F(Processes, ShareWithAFork) {
    const auto database = open();
    database->set("k", 1);
    EXPECT_TRUE(inChild([&] { return integer(*database, "k") == 1 && database->set("k", 2); }));
    EXPECT_EQ(integer(*database, "k"), 2);
    EXPECT_TRUE(database->set("k", 3));
}

// While another process moves the log into the database.
TEST_F(Processes, WaitForEachOtherToSynchronize) {
    const auto synchronize = [&](int number) {
        const auto database = open();
        bool isGood = true;
        for (int i = 0; i < 60; ++i)
            isGood = database->set("k" + std::to_string(number),
                                   std::string(20'000, 'x') + std::to_string(i)) &&
                     database->synchronize() && isGood;
        return isGood && told_.empty();
    };
    Child one([&] { return synchronize(1); }), two([&] { return synchronize(2); }),
        three([&] { return synchronize(3); });
    EXPECT_TRUE(one.end());
    EXPECT_TRUE(two.end());
    EXPECT_TRUE(three.end());
}

// Where nothing can be stored, what is being decoded is looked through at the same time.
TEST_F(Processes, RemoveEverythingWhileAThreadReads) {
    std::vector<SettingsDatabase::Change> changes;
    for (int i = 0; i < 2000; ++i)
        changes.emplace_back(std::to_string(i), PropertyList::Array{i});
    ASSERT_TRUE(open()->apply(std::move(changes)));
    const auto database = open();
    EXPECT_TRUE(inChild([&] { // which finds nothing that it could write
        removeFiles();
        std::filesystem::create_directory(path_);
        std::thread reader([&] {
            for (int i = 2000; i > 0; --i)
                database->value(std::to_string(i));
        });
        const bool isStored = database->removeAll();
        reader.join();
        return !isStored && database->contents().empty();
    }));
}
