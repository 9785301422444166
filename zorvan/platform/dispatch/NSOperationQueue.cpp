#include <zorvan/platform/dispatch/NSOperationQueue.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/dispatch/internal/WorkerPool.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <string>
#include <utility>
#include <vector>

namespace zorvan {

std::shared_ptr<NSOperationQueue> NSOperationQueue::create() {
    return std::shared_ptr<NSOperationQueue>(new NSOperationQueue(Kind::background));
}

const std::shared_ptr<NSOperationQueue>& NSOperationQueue::main() {
    static const auto* const queue = new std::shared_ptr<NSOperationQueue>(
        std::shared_ptr<NSOperationQueue>(new NSOperationQueue(Kind::main)));
    return *queue;
}

NSOperationQueue::NSOperationQueue(Kind kind)
    : kind_(kind), name_(kind == Kind::main ? "main" : ""),
      maxCount_(kind == Kind::main ? 1 : defaultMaxConcurrentOperationCount) {}

std::string NSOperationQueue::name() const {
    const std::lock_guard lock(mutex_);
    return name_;
}

void NSOperationQueue::setName(std::string name) {
    const std::lock_guard lock(mutex_);
    name_ = std::move(name);
}

std::int64_t NSOperationQueue::maxConcurrentOperationCount() const {
    const std::lock_guard lock(mutex_);
    return maxCount_;
}

void NSOperationQueue::setMaxConcurrentOperationCount(std::int64_t count) {
    if (count < 1 && count != defaultMaxConcurrentOperationCount)
        fatalError("An operation queue must let at least 1 operation run at a time, not " +
                   std::to_string(count) + ".");
    if (kind_ == Kind::main)
        return;
    std::vector<Block> startable;
    {
        const std::lock_guard lock(mutex_);
        maxCount_ = count;
        while (!waiting_.empty() && mayStart()) {
            startable.push_back(std::move(waiting_.front()));
            waiting_.pop_front();
            ++running_;
        }
    }
    for (Block& block : startable)
        start(std::move(block));
}

std::size_t NSOperationQueue::operationCount() const {
    const std::lock_guard lock(mutex_);
    return waiting_.size() + running_;
}

bool NSOperationQueue::mayStart() const noexcept {
    // The main dispatch queue runs one at a time by itself.
    return kind_ == Kind::main || maxCount_ == defaultMaxConcurrentOperationCount ||
           std::cmp_less(running_, maxCount_);
}

void NSOperationQueue::addOperation(Block block) {
    {
        const std::lock_guard lock(mutex_);
        if (!mayStart()) {
            waiting_.push_back(std::move(block));
            return;
        }
        ++running_;
    }
    start(std::move(block));
}

void NSOperationQueue::start(Block block) {
    const auto& queue = kind_ == Kind::main ? DispatchQueue::main() : DispatchQueue::global();
    queue->async([self = shared_from_this(), block = std::move(block)]() mutable {
        block();
        block = nullptr; // what it holds is released before the operation counts as finished
        self->finishOne();
    });
}

void NSOperationQueue::finishOne() {
    Block next;
    {
        const std::lock_guard lock(mutex_);
        --running_;
        if (!waiting_.empty() && mayStart()) {
            next = std::move(waiting_.front());
            waiting_.pop_front();
            ++running_;
        }
        if (running_ == 0)
            finished_.notify_all();
    }
    if (next)
        start(std::move(next));
}

void NSOperationQueue::waitUntilAllOperationsAreFinished() {
    if (kind_ == Kind::main && NSThread::isMainThread())
        fatalError("The main operation queue cannot be waited for on the main thread.");
    const internal::WorkerPool::Blocked blocked;
    std::unique_lock lock(mutex_);
    finished_.wait(lock, [this] { return running_ == 0 && waiting_.empty(); });
}

} // namespace zorvan
