#include <zorvan/platform/dispatch/internal/CurrentQueue.h>

namespace zorvan::internal {

namespace {
thread_local CurrentQueue* innermost = nullptr;
}

CurrentQueue::CurrentQueue(const void* queue) noexcept : queue_(queue), outer_(innermost) {
    innermost = this;
}

CurrentQueue::~CurrentQueue() { innermost = outer_; }

bool CurrentQueue::includes(const void* queue) noexcept {
    const CurrentQueue* current = innermost;
    while (current && current->queue_ != queue)
        current = current->outer_;
    return current != nullptr;
}

} // namespace zorvan::internal
