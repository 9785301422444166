#include "DatabaseTest.h"

#include <sched.h>
#include <sys/mount.h>

namespace {

using Processes = DatabaseTest;

} // namespace

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
    Signal begun, hasRead, written;
    Child reader([&] {
        begun.await();
        lockUp();
        const auto database = open();
        const bool readsFirst = integer(*database, "k") == 1 && hasRead.give();
        written.await();
        return readsFirst && integer(*database, "k") == 2 && !database->set("k", 3);
    });
    const auto database = open();
    database->set("k", 1);
    begun.give();
    ASSERT_TRUE(hasRead.await());
    database->set("k", 2);
    written.give();
    EXPECT_TRUE(reader.end());
}

// Also while the other moves the log into the database. One of them wins each key, but every
// process must come to the same in the end.
TEST_F(Processes, AgreeInTheEnd) {
    const auto write = [&](unsigned seed) {
        const auto database = open();
        std::mt19937 random(seed);
        for (int i = 0; i < 1000; ++i) {
            const std::string key = std::to_string(random() % 10);
            const auto kind = random() % 50;
            bool isStored = kind == 0  ? database->removeAll()
                            : kind < 9 ? database->remove(key)
                                       : database->set(key, static_cast<int>(seed) * 10'000 + i);
            if (i % 10 == 0)
                isStored = database->set("large", std::string(20'000, 'x') + key) &&
                           database->synchronize() && isStored;
            if (!isStored)
                return false;
        }
        return told_.empty();
    };
    Child one([&] { return write(1); }), two([&] { return write(2); }),
        three([&] { return write(3); });
    auto watcher = open(); // what it opened must not go along into the children
    EXPECT_TRUE(one.end() && two.end() && three.end());
    const PropertyList::Dictionary seen = watcher->contents();
    watcher.reset();
    EXPECT_TRUE(inChild([&] { return open()->contents() == seen; }));
}

// As a program does that goes into the background: the parent ends, others come and go, and what
// all share begins anew.
TEST_F(Processes, GoOnInAForkWhoseParentHasEnded) {
    Signal go, done;
    ASSERT_TRUE(inChild([&] {
        const auto database = open();
        database->set("k", 1);
        if (::fork() != 0)
            return true;
        go.await();
        bool isGood = integer(*database, "k") == 2 && database->set("own", 3);
        for (int i = 0; i < 100; ++i)
            isGood = database->set("own", i) && integer(*database, "own") == i && isGood;
        return isGood && done.give();
    }));
    EXPECT_TRUE(inChild([&] { return open()->set("k", 2); }));
    const auto other = open();
    go.give();
    ASSERT_TRUE(done.await());
    EXPECT_EQ(integer(*other, "own"), 99);
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
        fs::create_directory(path_);
        std::thread reader([&] {
            for (int i = 2000; i > 0; --i)
                database->value(std::to_string(i));
        });
        const bool isStored = database->removeAll();
        reader.join();
        return !isStored && database->contents().empty();
    }));
}
