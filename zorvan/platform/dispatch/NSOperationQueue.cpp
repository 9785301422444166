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

namespace zorvan {

struct NSOperationQueue::State {
    explicit State(Kind own)
        : kind(own), name(own == Kind::main ? "main" : ""),
          maxCount(own == Kind::main ? 1 : defaultMaxConcurrentOperationCount) {}

    bool mayStart() const noexcept {
        // The main dispatch queue runs one at a time by itself.
        return waiting.size() > starting &&
               (kind == Kind::main || maxCount == defaultMaxConcurrentOperationCount ||
                std::cmp_less(starting + running, maxCount));
    }

    const Kind kind;
    std::mutex mutex;
    std::condition_variable finished;
    std::string name;
    /// Those that have not begun, in order, the first `starting` of which a thread is on its way
    /// to.
    std::deque<Block> waiting;
    std::size_t starting = 0;
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
    const std::lock_guard lock(state_->mutex);
    state_->maxCount = count;
    while (state_->mayStart())
        startFirst();
}

std::size_t NSOperationQueue::operationCount() const {
    const std::lock_guard lock(state_->mutex);
    return state_->waiting.size() + state_->running;
}

void NSOperationQueue::addOperation(Block block) {
    const std::lock_guard lock(state_->mutex);
    state_->waiting.push_back(std::move(block));
    if (!state_->mayStart())
        return;
    try {
        startFirst();
    } catch (...) {                                // neither memory nor a thread
        block = std::move(state_->waiting.back()); // what it holds is released after the lock
        state_->waiting.pop_back();
        throw;
    }
}

/// Under the lock, which may: sends a thread for the first operation that none is on its way to.
void NSOperationQueue::startFirst() {
    const auto& queue =
        state_->kind == Kind::main ? DispatchQueue::main() : DispatchQueue::global();
    queue->async([self = shared_from_this()] { self->run(); });
    ++state_->starting;
}

/// Runs the first operation, and those after it that no other thread could be sent for.
void NSOperationQueue::run() {
    do {
        Block block;
        {
            const std::lock_guard lock(state_->mutex);
            block = std::move(state_->waiting.front());
            state_->waiting.pop_front();
            --state_->starting;
            ++state_->running;
        }
        block();
        block = nullptr; // what it holds is released before the operation counts as finished
    } while (finishOne());
}

/// Whether the thread that has run one is to run the next.
bool NSOperationQueue::finishOne() {
    const std::lock_guard lock(state_->mutex);
    --state_->running;
    if (state_->waiting.empty() && state_->running == 0)
        state_->finished.notify_all();
    if (!state_->mayStart())
        return false;
    try {
        startFirst();
        return false;
    } catch (...) { // neither memory nor a thread
        ++state_->starting;
        return true;
    }
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() {
    if (state_->kind == Kind::main && NSThread::isMainThread())
        fatalError("The main operation queue cannot be waited for on the main thread.");
    const internal::WorkerPool::Blocked blocked;
    std::unique_lock lock(state_->mutex);
    state_->finished.wait(lock, [this] { return state_->running == 0 && state_->waiting.empty(); });
}

} // namespace zorvan
