#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>

namespace {

TEST(DispatchQueue, SerialQueueRunsTheBlocksOfManyThreadsOneAtATimeInOrder) {
    const auto queue = DispatchQueue::create("order");
    EXPECT_EQ(queue->label(), "order");
    std::array<int, 4> seen{}; // not locked: the queue is what orders the writes
    std::vector<std::jthread> threads;
    for (int& mine : seen)
        threads.emplace_back([&] {
            for (int i = 0; i < 6'000; i += 3) {
                for (const int next : {i, i + 1})
                    queue->async([&mine, next] { mine += mine == next; });
                queue->sync([&] { mine += mine == i + 2; });
            }
        });
    threads.clear();
    for (const int count : seen)
        EXPECT_EQ(count, 6'000);
}

TEST(DispatchQueue, SyncRunsOnTheCallingThreadAndPassesResultsAndExceptions) {
    for (const auto attributes :
         {DispatchQueue::Attributes::serial, DispatchQueue::Attributes::concurrent}) {
        const auto queue = DispatchQueue::create("results", attributes);
        EXPECT_EQ(queue->sync([] { return std::this_thread::get_id(); }),
                  std::this_thread::get_id());
        EXPECT_EQ(*queue->sync([] { return std::make_unique<int>(7); }), 7);
        int target = 1;
        int& reference = queue->sync([&]() -> int& { return target; });
        EXPECT_EQ(&reference, &target);
        EXPECT_THROW(queue->sync([] { throw std::runtime_error("no"); }), std::runtime_error);
        EXPECT_EQ(queue->sync([] { return 3; }), 3) << "the queue goes on after an exception";
    }
}

TEST(DispatchQueue, WhatIsQueuedKeepsAQueueAlive) {
    const auto expectKept = [](auto queue, auto add) {
        const std::weak_ptr watched = queue;
        const auto done = DispatchSemaphore::create(0);
        add(*queue, [] { std::this_thread::sleep_for(10ms); });
        add(*queue, [done] { done->signal(); });
        queue = nullptr;
        EXPECT_TRUE(done->wait(10s));
        for (int i = 0; i < 1000 && !watched.expired(); ++i)
            std::this_thread::sleep_for(1ms);
        EXPECT_TRUE(watched.expired());
    };
    expectKept(DispatchQueue::create("dropped"),
               [](DispatchQueue& queue, Block block) { queue.async(std::move(block)); });
    auto operations = NSOperationQueue::create();
    operations->setMaxConcurrentOperationCount(1);
    expectKept(std::move(operations),
               [](NSOperationQueue& queue, Block block) { queue.addOperation(std::move(block)); });
}

TEST(DispatchQueue, ConcurrentBlocksOverlapEvenWhenManyWaitForEachOther) {
    // More blocks than cores, all of which wait for the last: in ways the library knows of or not.
    const auto queue = DispatchQueue::create("overlap", DispatchQueue::Attributes::concurrent);
    constexpr int waiting = 12;
    const auto finished = DispatchSemaphore::create(0);
    const auto known = DispatchSemaphore::create(0);
    std::atomic<bool> open = false;
    for (const bool isKnown : {true, false}) {
        for (int i = 0; i < waiting; ++i)
            queue->async([=, &open] {
                isKnown ? known->wait() : open.wait(false);
                finished->signal();
            });
        queue->async([=, &open] {
            for (int i = 0; i < waiting && isKnown; ++i)
                known->signal();
            open = !isKnown;
            open.notify_all();
        });
        for (int i = 0; i < waiting; ++i)
            ASSERT_TRUE(finished->wait(30s));
    }
}

TEST(DispatchQueue, AsyncAfterRunsInTheOrderOfTheDeadlines) {
    const auto queue = DispatchQueue::create("timers");
    const auto done = DispatchSemaphore::create(0);
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> seen;
    queue->asyncAfter(std::chrono::nanoseconds::max(), [] { FAIL() << "at the end of time"; });
    queue->asyncAfter(60ms, [&] {
        seen.push_back(3);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 60ms);
        done->signal();
    });
    queue->asyncAfter(30ms, [&] { seen.push_back(2); });
    queue->asyncAfter(std::chrono::nanoseconds::min(), [&] { seen.push_back(0); });
    queue->asyncAfter(start - 1h, [&] { seen.push_back(1); });
    ASSERT_TRUE(done->wait(10s));
    EXPECT_EQ(seen, (std::vector{0, 1, 2, 3}));
}

TEST(DispatchQueueDeathTest, StopsWhereItCouldOnlyHang) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DispatchQueue::main()->sync([] {}),
                 "^sync called on the main queue from the main thread.\n$");
    EXPECT_DEATH(
        {
            const auto outer = DispatchQueue::create("outer");
            const auto inner = DispatchQueue::create("inner");
            outer->sync([&] { inner->sync([&] { outer->sync([] {}); }); });
        },
        "^sync called on the queue that the caller is running on.\n$");
    EXPECT_DEATH(
        {
            DispatchQueue::global()->async([] { throw std::runtime_error("unheard"); });
            std::this_thread::sleep_for(10s);
        },
        "unheard");
}

TEST(DispatchQueueDeathTest, ProcessEndsWithWorkQueuedAndRunning) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const auto serial = DispatchQueue::create("late");
            const auto started = DispatchSemaphore::create(0);
            serial->async([started] {
                started->signal();
                std::this_thread::sleep_for(1h);
            });
            serial->async([] { std::abort(); });
            serial->asyncAfter(1h, [] { std::abort(); });
            DispatchQueue::main()->async([] { std::abort(); });
            DispatchQueue::global()->async(
                [] { DispatchQueue::main()->sync([] { std::abort(); }); });
            started->wait();
            std::exit(3);
        },
        testing::ExitedWithCode(3), "^$");
}

} // namespace
