#include <zorvan/platform/dispatch/MainQueue.h>

#include <zorvan/platform/dispatch/NSThread.h>
#include <zorvan/platform/dispatch/internal/CurrentQueue.h>
#include <zorvan/platform/dispatch/internal/MainDispatchQueue.h>
#include <zorvan/platform/dispatch/internal/Turn.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zorvan {

namespace internal {

namespace {

void runBlock(Block& block) noexcept { block(); }

void requireMainThread() {
    if (!NSThread::isMainThread())
        fatalError("The main queue can only be drained on the main thread.");
}

// An event descriptor holds a counter; a full or empty one is as good as signalled or cleared.
void signal(int event) { ::eventfd_write(event, 1); }

void clear(int event) {
    eventfd_t count;
    ::eventfd_read(event, &count);
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
    if (event_ >= 0 && blocks_.size() == 1)
        signal(event_);
    changed_.notify_one();
}

/// Under the lock, with a block there.
Block MainDispatchQueue::takeFirst() {
    Block block = std::move(blocks_.front());
    blocks_.pop_front();
    ++taken_;
    if (event_ >= 0 && blocks_.empty())
        clear(event_);
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
    const auto ready = [this] { return stopped_ || !blocks_.empty(); };
    for (;;) {
        std::unique_lock lock(mutex_);
        if (!deadline)
            changed_.wait(lock, ready);
        else if (!changed_.wait_until(lock, *deadline, ready))
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

void MainDispatchQueue::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_one();
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

int MainDispatchQueue::fileDescriptor() {
    const std::lock_guard lock(mutex_);
    if (event_ < 0) {
        event_ = ::eventfd(blocks_.empty() ? 0 : 1, EFD_CLOEXEC | EFD_NONBLOCK);
        if (event_ < 0)
            throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return event_;
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
