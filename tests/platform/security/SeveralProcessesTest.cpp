#include "SecureItems.h"

#include <tests/platform/settingsdatabase/Processes.h>
#include <zorvan/platform/security/internal/Items.h>

#include <sys/wait.h>

using SeveralProcesses = SecureItems;

TEST_F(SeveralProcesses, OfTwoThatAddTheSameOneGetsDuplicate) {
    constexpr int count = 60;
    const auto a = peer();
    const auto b = peer();
    const std::string command = "race item " + std::to_string(count);
    a->tell(command); // on an empty folder, so that they also race for the database and the key
    b->tell(command);
    const auto first = a->hear(60s);
    const auto second = b->hear(60s);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(std::stoi(*first) + std::stoi(*second), count);
    EXPECT_EQ(sql("SELECT count(*), count(DISTINCT sealing_key) FROM items"),
              std::to_string(count) + "\n1\n");
    EXPECT_EQ(ask(*peer(), "get item-59"), "");
}

TEST_F(SeveralProcesses, WhatOneHasReadIsForgottenWhenAnotherWrites) {
    const auto other = peer();
    EXPECT_EQ(get(item("a")), absent);
    // The large ones are more than what is kept in memory of one, and of all together.
    for (const std::size_t size : {1u, 100'000u, 2u, 60'000u, 3u}) {
        for (int i = 0; i < 20; ++i)
            ASSERT_EQ(ask(*other, "set " + std::to_string(i) + ' ' + std::string(size, 'x')), "0");
        for (int i = 0; i < 60; ++i)
            EXPECT_EQ(get(item(std::to_string(i % 20))), std::string(size, 'x')) << i;
        EXPECT_EQ(get(item("1", {{kSecAttrLabel, "l"}})), absent); // also of what is known
    }
    ASSERT_EQ(SecItemUpdate(item("1"), {{kSecAttrLabel, "l"}}), errSecSuccess);
    EXPECT_EQ(get(item("1", {{kSecAttrLabel, "l"}})), "xxx");
    EXPECT_EQ(ask(*other, "delete 1"), "0");
    EXPECT_EQ(get(item("1")), absent);
}

TEST_F(SeveralProcesses, AWriteThatFindsNoRoomChangesNothing) {
    // Files may not grow beyond 128 KiB, or 256, as the shell counts.
    Process cramped({"sh", "-c", "trap '' XFSZ; ulimit -f 256; exec " PEER}, environment);
    ASSERT_EQ(ask(cramped, "set a 1"), "0");
    const std::string large(600'000, 'x');
    EXPECT_LT(std::stoi(ask(cramped, "set a " + large)), 0);
    EXPECT_LT(std::stoi(ask(cramped, "set b " + large)), 0);
    EXPECT_EQ(ask(cramped, "get a"), "1");
    EXPECT_EQ(ask(cramped, "set a 2"), "0");
    EXPECT_EQ(ask(*peer(), "get a"), "2");
    EXPECT_EQ(ask(*peer(), "set b " + large), "0");
}

// As a program does that goes into the background.
TEST_F(SeveralProcesses, AForkedChildGoesOnWhenItsParentHasEnded) {
    for (const bool isUsedAtOnce : {true, false}) {
        const Signal go, done;
        ASSERT_TRUE(inChild([&] {
            add("a", "1");
            if (::fork() != 0)
                return true;
            bool isGood = true;
            const auto end = std::chrono::steady_clock::now() + 20s;
            while (isUsedAtOnce && get(item("b")) != "2" && std::chrono::steady_clock::now() < end)
                isGood = get(item("a")) == "1" && isGood; // while others come
            isGood = go.await() && isGood;
            for (int i = 0; i < 20; ++i)
                isGood = get(item("a")) == "1" && get(item("b")) == "2" && isGood;
            return isGood && add(isUsedAtOnce ? "c" : "d", "3") == errSecSuccess && done.give();
        }));
        for (int i = 0; i < 20; ++i) // each begins anew with what all share
            EXPECT_EQ(ask(*peer(), "set b 1"), "0");
        const auto other = peer();
        EXPECT_EQ(ask(*other, "set b 2"), "0");
        EXPECT_TRUE(go.give());
        EXPECT_TRUE(done.await());
        EXPECT_EQ(ask(*other, isUsedAtOnce ? "get c" : "get d"), "3");
    }
}

// Within a transaction, what a child has of it is not its own.
TEST_F(SeveralProcesses, AChildForkedWithinAChangeHasNoPartInIt) {
    ASSERT_EQ(add("a", "1"), errSecSuccess);
    security::ItemQuery query;
    query.attributes.texts[security::serviceText] = "test";
    query.attributes.texts[security::accountText] = "a";
    pid_t child = -1;
    bool isBarred = false;
    const OSStatus status =
        security::modify(query, query.attributes, [&](std::optional<Data>& value) {
            EXPECT_EQ(add("b", "2"), errSecSuccess); // so that something is written by now
            child = ::fork();
            isBarred = child == 0 && add("c", "3") == errSecNotAvailable;
            value = bytesOf("4");
            return true;
        });
    if (child == 0) { // afterwards it is one like any other
        const std::string value = get(item("a"));
        const bool isGood = value == "1" || value == "4"; // whether or not the parent is through
        ::_exit(isGood && isBarred && status == errSecNotAvailable ? 0 : 1);
    }
    int ended = -1;
    ASSERT_EQ(::waitpid(child, &ended, 0), child);
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(status, errSecSuccess);
    for (const auto& [account, value] : {std::pair("a", "4"), {"b", "2"}})
        EXPECT_EQ(ask(*peer(), std::string("get ") + account), value);
    EXPECT_EQ(sql("PRAGMA integrity_check"), "ok\n");
}
