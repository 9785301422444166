#include <zorvan/platform/foundation/internal/timeOf.h>
#include <zorvan/platform/graphics/internal/runOnStack.h>

#include <algorithm>
#include <future>
#include <pthread.h>
#include <sys/mman.h>

namespace zorvan {

namespace {

void watch(pthread_t thread, const std::future<void>& end, const TimeLimit& limit) {
    using namespace std::chrono_literals;
    clockid_t clock = {};
    if (!limit.stop || ::pthread_getcpuclockid(thread, &clock) != 0)
        return;
    for (std::chrono::nanoseconds left = limit.time; left > 0s;
         left = limit.time - internal::timeOf(clock))
        if (end.wait_for(std::max<std::chrono::nanoseconds>(left, 1ms)) ==
            std::future_status::ready)
            return;
    limit.stop();
}

} // namespace

bool runOnStack(std::size_t byteCount, const std::function<void()>& work, const TimeLimit& limit) {
    std::packaged_task<void()> task(work);
    const std::future<void> end = task.get_future();
    void* const stack = ::mmap(nullptr, byteCount, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (stack == MAP_FAILED)
        return false;
    constexpr std::size_t guard = 1 << 16; // below which it must not grow
    pthread_attr_t attributes;
    pthread_t thread = {};
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setstack(&attributes, stack, byteCount);
    const auto run = [](void* given) -> void* {
        (*static_cast<std::packaged_task<void()>*>(given))();
        return nullptr;
    };
    const bool runs = ::mprotect(stack, guard, PROT_NONE) == 0 &&
                      ::pthread_create(&thread, &attributes, run, &task) == 0;
    if (runs) {
        watch(thread, end, limit);
        ::pthread_join(thread, nullptr);
    }
    ::pthread_attr_destroy(&attributes);
    ::munmap(stack, byteCount);
    return runs;
}

} // namespace zorvan
