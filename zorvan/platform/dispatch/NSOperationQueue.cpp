#include <zorvan/platform/dispatch/NSOperationQueue.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/dispatch/internal/WorkerPool.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

struct NSOperationQueue::State {
    explicit State(Kind own)
        : kind(own), name(own == Kind::main ? "main" : ""),
          maxCount(own == Kind::main ? 1 : defaultMaxConcurrentOperationCount) {}

    bool mayStart() const noexcept {
        // The main dispatch queue runs one at a time by itself.
        return kind == Kind::main || maxCount == defaultMaxConcurrentOperationCount ||
               std::cmp_less(running, maxCount);
    }

    const Kind kind;
    std::mutex mutex;
    std::condition_variable finished;
    std::string name;
    std::deque<Block> waiting;
    std::size_t running = 0;
    std::int64_t maxCount;
};

std::shared_ptr<NSOperationQueue> NSOperationQueue::create() {
    return std::shared_ptr<NSOperationQueue>(new NSOperationQueue(Kind::background));
}

const std::shared_ptr<NSOperationQueue>& NSOperationQueue::main() {
    static const auto* const queue =
        new std::shared_ptr<NSOperationQueue>(new NSOperationQueue(Kind::main));
    return *queue;
}

NSOperationQueue::NSOperationQueue(Kind kind) : state_(std::make_unique<State>(kind)) {}

NSOperationQueue::~NSOperationQueue() = default;

std::string NSOperationQueue::name() const {
    const std::lock_guard lock(state_->mutex);
    return state_->name;
}

void NSOperationQueue::setName(std::string name) {
    const std::lock_guard lock(state_->mutex);
    state_->name = std::move(name);
}

std::int64_t NSOperationQueue::maxConcurrentOperationCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->maxCount;
}

void NSOperationQueue::setMaxConcurrentOperationCount(std::int64_t count) {
    if (count < 1 && count != defaultMaxConcurrentOperationCount)
        fatalError("An operation queue must let at least 1 operation run at a time, not " +
                   std::to_string(count) + ".");
    if (state_->kind == Kind::main)
        return;
    std::vector<Block> startable;
    {
        const std::lock_guard lock(state_->mutex);
        state_->maxCount = count;
        while (!state_->waiting.empty() && state_->mayStart()) {
            startable.push_back(std::move(state_->waiting.front()));
            state_->waiting.pop_front();
            ++state_->running;
        }
    }
    for (Block& block : startable)
        start(std::move(block));
}

std::size_t NSOperationQueue::operationCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->waiting.size() + state_->running;
}

void NSOperationQueue::addOperation(Block block) {
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->mayStart()) {
            state_->waiting.push_back(std::move(block));
            return;
        }
        ++state_->running;
    }
    start(std::move(block));
}

void NSOperationQueue::start(Block block) {
    try {
        const auto& queue =
            state_->kind == Kind::main ? DispatchQueue::main() : DispatchQueue::global();
        queue->async([self = shared_from_this(), block = std::move(block)]() mutable {
            block();
            block = nullptr; // what it holds is released before the operation counts as finished
            self->finishOne();
        });
    } catch (...) { // neither memory nor a thread
        const std::lock_guard lock(state_->mutex);
        if (--state_->running == 0)
            state_->finished.notify_all();
        throw;
    }
}

void NSOperationQueue::finishOne() {
    Block next;
    {
        const std::lock_guard lock(state_->mutex);
        --state_->running;
        if (!state_->waiting.empty() && state_->mayStart()) {
            next = std::move(state_->waiting.front());
            state_->waiting.pop_front();
            ++state_->running;
        }
        if (state_->running == 0)
            state_->finished.notify_all();
    }
    if (next)
        start(std::move(next));
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() {
    if (state_->kind == Kind::main && NSThread::isMainThread())
        fatalError("The main operation queue cannot be waited for on the main thread.");
    const internal::WorkerPool::Blocked blocked;
    std::unique_lock lock(state_->mutex);
    state_->finished.wait(lock, [this] { return state_->running == 0 && state_->waiting.empty(); });
}

} // namespace zorvan
