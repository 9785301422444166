#include <tests/Testing.h>

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

} // namespace
