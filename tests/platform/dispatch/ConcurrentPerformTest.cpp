#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/concurrentPerform.h>

#include <mutex>

// The thread sanitizer does not see how oneTBB, which is not built with it, orders its threads.
extern "C" const char* __tsan_default_suppressions() { return "race:tbb::\nrace:/tbb/\n"; }

namespace {

TEST(ConcurrentPerform, RunsEveryIterationOnce) {
    for (const std::int64_t count : {-1, 0, 1, 2, 3, 1000, 100'003}) {
        std::vector<std::atomic<int>> calls(
            static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
        concurrentPerform(count, [&](std::int64_t i) { ++calls[static_cast<std::size_t>(i)]; });
        for (const auto& each : calls)
            ASSERT_EQ(each, 1) << count;
    }
}

TEST(ConcurrentPerform, PassesAnExceptionOnAndEndsFirst) {
    std::atomic<int> running = 0;
    EXPECT_THROW(concurrentPerform(1000,
                                   [&](std::int64_t i) {
                                       ++running;
                                       if (i == 500) {
                                           --running;
                                           throw std::out_of_range("500");
                                       }
                                       --running;
                                   }),
                 std::out_of_range);
    EXPECT_EQ(running, 0);
}

TEST(ConcurrentPerform, NestedLoopsUnderALockNeitherDeadlockNorOversubscribe) {
    std::mutex held;
    std::mutex guard;
    std::set<std::thread::id> threads;
    std::atomic<int> sum = 0;
    concurrentPerform(50, [&](std::int64_t) {
        const std::lock_guard lock(held);
        concurrentPerform(50, [&](std::int64_t) {
            ++sum;
            const std::lock_guard guarded(guard);
            threads.insert(std::this_thread::get_id());
        });
    });
    EXPECT_EQ(sum, 2500);
    EXPECT_LE(threads.size(), std::max(2U, std::thread::hardware_concurrency()));
}

TEST(ConcurrentPerform, BodiesMayUseASerialQueue) {
    const auto queue = DispatchQueue::create("results");
    std::set<std::int64_t> results;
    concurrentPerform(2000, [&](std::int64_t i) { queue->sync([&] { results.insert(i); }); });
    EXPECT_EQ(results.size(), 2000U);
}

TEST(ConcurrentPerform, QueuesMayRunLoopsAtTheSameTime) {
    std::atomic<int> sum = 0;
    const auto queue = DispatchQueue::create("outer", DispatchQueue::Attributes::concurrent);
    std::atomic<int> left = 20;
    for (int i = 0; i < 20; ++i) {
        queue->async([&] {
            concurrentPerform(1000, [&](std::int64_t) { ++sum; });
            if (--left == 0)
                left.notify_all();
        });
    }
    for (int now = left; now != 0; now = left)
        left.wait(now);
    EXPECT_EQ(sum, 20'000);
}

} // namespace
