#include <zorvan/platform/dispatch/MainQueue.h>

#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/dispatch/internal/MainDispatchQueue.h>
#include <zorvan/platform/dispatch/internal/Turn.h>
#include <zorvan/platform/foundation/fatalError.h>
#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <exception>
#include <memory>
#include <poll.h>
#include <utility>

namespace zorvan {

namespace internal {

namespace {

void requireMainThread() {
    if (!NSThread::isMainThread())
        fatalError("The main queue can only be drained on the main thread.");
}

class AtFork final : public ForkParticipant {
    void lock() override { MainDispatchQueue::shared()->lockForFork(); }
    void end(bool isChild) override { MainDispatchQueue::shared()->endFork(isChild); }
};

constinit AtFork atFork;
const ForkParticipant::Joined joined(atFork);

/// Until the deadline, an hour at the most.
timespec timeLeft(std::chrono::steady_clock::time_point deadline) {
    using namespace std::chrono;
    const auto now = steady_clock::now();
    if (deadline <= now)
        return {};
    const auto left = std::min<nanoseconds>(deadline - now, hours(1));
    return {static_cast<time_t>(left / seconds(1)), static_cast<long>((left % seconds(1)).count())};
}

} // namespace

const std::shared_ptr<MainDispatchQueue>& MainDispatchQueue::shared() {
    static const auto* const queue =
        new std::shared_ptr<MainDispatchQueue>(std::make_shared<MainDispatchQueue>());
    return *queue;
}

void MainDispatchQueue::enqueue(Block block) {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
    if (event_ && blocks_.size() == 1)
        event_->signal();
    wake();
}

/// Under the lock.
void MainDispatchQueue::wake() {
    if (std::exchange(isPolling_, false))
        idleWakeup_->signal();
    else
        changed_.notify_one();
}

/// Under the lock, with a block there.
Block MainDispatchQueue::takeFirst() {
    Block block = std::move(blocks_.front());
    blocks_.pop_front();
    ++taken_;
    if (event_ && blocks_.empty())
        event_->clear();
    return block;
}

void MainDispatchQueue::runSync(BlockReference block) {
    if (NSThread::isMainThread())
        fatalError("sync called on the main queue from the main thread.");
    std::exception_ptr error;
    Turn done;
    enqueue([&] {
        try {
            block();
        } catch (...) {
            error = std::current_exception();
        }
        done.give();
    });
    done.wait();
    if (error)
        std::rethrow_exception(std::move(error));
}

bool MainDispatchQueue::run(Deadline deadline) {
    requireMainThread();
    for (;;) {
        std::unique_lock lock(mutex_);
        if (!awaitWork(lock, deadline))
            return false;
        if (std::exchange(stopped_, false))
            return true;
        if (deadline && std::chrono::steady_clock::now() >= *deadline)
            return false;
        Block block = takeFirst();
        lock.unlock();
        runBlock(block);
    }
}

/// False when the deadline passed before.
bool MainDispatchQueue::awaitWork(std::unique_lock<std::mutex>& lock, Deadline deadline) {
    while (!stopped_ && blocks_.empty()) {
        if (deadline && std::chrono::steady_clock::now() >= *deadline)
            return false;
        if (idleSource_)
            pollIdleSource(lock, deadline);
        else if (deadline)
            changed_.wait_until(lock, *deadline);
        else
            changed_.wait(lock);
    }
    return true;
}

/// Until there are blocks, the source has something, or the deadline.
void MainDispatchQueue::pollIdleSource(std::unique_lock<std::mutex>& lock, Deadline deadline) {
    isPolling_ = true;
    lock.unlock();
    std::array<pollfd, 2> entries{
        {idleSource_->beginIdle(), {idleWakeup_->descriptor(), POLLIN, 0}}};
    const timespec timeout = deadline ? timeLeft(*deadline) : timespec{};
    ::ppoll(entries.data(), entries.size(), deadline ? &timeout : nullptr, nullptr);
    lock.lock();
    if (!std::exchange(isPolling_, false))
        idleWakeup_->clear();
    lock.unlock();
    idleSource_->endIdle(entries[0].revents);
    lock.lock();
}

void MainDispatchQueue::setIdleSource(IdleSource& source) {
    const std::lock_guard lock(mutex_);
    idleWakeup_.emplace();
    idleSource_ = &source;
    changed_.notify_one();
}

void MainDispatchQueue::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    wake();
}

std::size_t MainDispatchQueue::drain() {
    requireMainThread();
    std::unique_lock lock(mutex_);
    const std::uint64_t end = taken_ + blocks_.size();
    std::size_t count = 0;
    // A block may drain too, and leave fewer than were there.
    while (taken_ < end) {
        Block block = takeFirst();
        lock.unlock();
        runBlock(block);
        block = nullptr;
        ++count;
        lock.lock();
    }
    return count;
}

void MainDispatchQueue::endFork(bool isChild) {
    if (isChild) {
        std::construct_at(&changed_); // where threads of the parent may be waiting
        isPolling_ = false;
        idleSource_ = nullptr;
        if (event_)
            event_->part();
        if (event_ && !blocks_.empty())
            event_->signal();
    }
    mutex_.unlock();
}

int MainDispatchQueue::fileDescriptor() {
    const std::lock_guard lock(mutex_);
    if (!event_) {
        event_.emplace();
        if (!blocks_.empty())
            event_->signal();
    }
    return event_->descriptor();
}

} // namespace internal

using internal::MainDispatchQueue;

void MainQueue::run() { MainDispatchQueue::shared()->run(std::nullopt); }

bool MainQueue::runUntil(std::chrono::steady_clock::time_point deadline) {
    return MainDispatchQueue::shared()->run(deadline);
}

void MainQueue::stop() { MainDispatchQueue::shared()->stop(); }

std::size_t MainQueue::drain() { return MainDispatchQueue::shared()->drain(); }

int MainQueue::fileDescriptor() { return MainDispatchQueue::shared()->fileDescriptor(); }

} // namespace zorvan
