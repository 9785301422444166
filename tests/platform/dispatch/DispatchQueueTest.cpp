#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>

#include <mutex>

namespace {

TEST(DispatchQueue, SerialQueueRunsBlocksOneAtATimeInOrder) {
    const auto queue = DispatchQueue::create("order");
    std::vector<int> seen; // not locked: the queue is what orders the writes
    for (int i = 0; i < 10'000; ++i)
        queue->async([&, i] { seen.push_back(i); });
    queue->sync([&] { seen.push_back(10'000); });
    ASSERT_EQ(seen.size(), 10'001U);
    for (int i = 0; i <= 10'000; ++i)
        ASSERT_EQ(seen[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(queue->label(), "order");
}

TEST(DispatchQueue, SerialQueueIsALockForManyThreads) {
    const auto queue = DispatchQueue::create("counter");
    int counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 2'000; ++i) {
                queue->sync([&] { ++counter; });
                queue->async([&] { ++counter; });
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(queue->sync([&] { return counter; }), 16'000);
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

TEST(DispatchQueue, QueuedBlocksKeepTheQueueAlive) {
    const auto done = DispatchSemaphore::create(0);
    auto queue = DispatchQueue::create("dropped");
    const std::weak_ptr<DispatchQueue> watched = queue;
    queue->async([done] { std::this_thread::sleep_for(10ms); });
    queue->async([done] { done->signal(); });
    queue = nullptr;
    EXPECT_TRUE(done->wait(10s));
    for (int i = 0; i < 1000 && !watched.expired(); ++i)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(watched.expired());
}

TEST(DispatchQueue, ConcurrentBlocksOverlapEvenWhenManyWaitForEachOther) {
    // More blocks than cores, all of which wait for the last: in ways the library knows of or not.
    const auto queue = DispatchQueue::create("overlap", DispatchQueue::Attributes::concurrent);
    constexpr int waiting = 12;
    const auto finished = DispatchSemaphore::create(0);
    const auto known = DispatchSemaphore::create(0);
    for (int i = 0; i < waiting; ++i) {
        queue->async([=] {
            known->wait();
            finished->signal();
        });
    }
    queue->async([=] {
        for (int i = 0; i < waiting; ++i)
            known->signal();
    });
    for (int i = 0; i < waiting; ++i)
        ASSERT_TRUE(finished->wait(30s));

    std::atomic<bool> open = false;
    for (int i = 0; i < waiting; ++i) {
        queue->async([&open, finished] {
            open.wait(false);
            finished->signal();
        });
    }
    queue->async([&open] {
        open = true;
        open.notify_all();
    });
    for (int i = 0; i < waiting; ++i)
        ASSERT_TRUE(finished->wait(30s));
}

TEST(DispatchQueue, AsyncAfterRunsInTheOrderOfTheDeadlines) {
    const auto queue = DispatchQueue::create("timers");
    const auto done = DispatchSemaphore::create(0);
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> seen;
    std::chrono::steady_clock::time_point last;
    queue->asyncAfter(std::chrono::nanoseconds::max(), [] { FAIL() << "at the end of time"; });
    queue->asyncAfter(60ms, [&] {
        seen.push_back(3);
        last = std::chrono::steady_clock::now();
        done->signal();
    });
    queue->asyncAfter(30ms, [&] { seen.push_back(2); });
    queue->asyncAfter(std::chrono::nanoseconds::min(), [&] { seen.push_back(0); });
    queue->asyncAfter(start - 1h, [&] { seen.push_back(1); });
    ASSERT_TRUE(done->wait(10s));
    EXPECT_EQ(seen, (std::vector{0, 1, 2, 3}));
    EXPECT_GE(last - start, 60ms);
}

TEST(DispatchQueue, SyncBetweenQueuesInARowDoesNotDeadlock) {
    // Two queues whose blocks wait for a third, from many workers at once.
    const auto inner = DispatchQueue::create("inner");
    const auto done = DispatchSemaphore::create(0);
    int sum = 0;
    const std::array queues{DispatchQueue::create("a"), DispatchQueue::create("b")};
    for (int i = 0; i < 500; ++i) {
        for (const auto& queue : queues) {
            queue->async([&] {
                inner->sync([&] { ++sum; });
                done->signal();
            });
        }
    }
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(done->wait(10s));
    EXPECT_EQ(sum, 1000);
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
