#include <zorvan/platform/dispatch/concurrentPerform.h>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace zorvan::internal {

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

} // namespace zorvan::internal
