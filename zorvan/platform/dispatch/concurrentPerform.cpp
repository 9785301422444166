#include <zorvan/platform/dispatch/concurrentPerform.h>

#ifdef __SANITIZE_THREAD__
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#else
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#endif

namespace zorvan::internal {

#ifdef __SANITIZE_THREAD__

// The thread sanitizer does not see how oneTBB's own library orders its threads, and would take every
// loop for a race. Plain threads stand in for it, so that the bodies of loops are judged all the same;
// inner loops run on the thread of the outer one.
thread_local bool isInLoop = false;

void performChunks(std::int64_t iterations, void* context,
                   void (*chunk)(void*, std::int64_t, std::int64_t)) {
    std::atomic<std::int64_t> next = 0;
    std::mutex mutex;
    std::exception_ptr error;
    const auto work = [&] {
        isInLoop = true;
        try {
            for (std::int64_t i = next++; i < iterations; i = next++)
                chunk(context, i, i + 1);
        } catch (...) {
            next = iterations;
            const std::lock_guard lock(mutex);
            if (!error)
                error = std::current_exception();
        }
    };
    if (std::exchange(isInLoop, true)) {
        work();
    } else {
        const std::jthread other(work);
        work();
        isInLoop = false;
    }
    if (error)
        std::rethrow_exception(std::move(error));
}

#else

void performChunks(std::int64_t iterations, void* context,
                   void (*chunk)(void*, std::int64_t, std::int64_t)) {
    if (iterations <= 0)
        return;
    // Isolated: a thread that waits here would otherwise pick up iterations of an outer loop, and
    // deadlock on a lock that the outer body holds.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(tbb::blocked_range<std::int64_t>(0, iterations),
                          [=](const tbb::blocked_range<std::int64_t>& range) {
                              chunk(context, range.begin(), range.end());
                          });
    });
}

#endif

} // namespace zorvan::internal
