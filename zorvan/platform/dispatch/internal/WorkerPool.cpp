#include <zorvan/platform/dispatch/internal/WorkerPool.h>

#include <zorvan/platform/dispatch/internal/Timer.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace zorvan::internal {

namespace {

constexpr std::size_t maxThreads = 512;
constexpr std::size_t maxStallAllowance = 64;
constexpr auto stallCheckInterval = std::chrono::milliseconds(50);
constexpr auto idleLifetime = std::chrono::seconds(5);

thread_local bool isWorker = false;

} // namespace

WorkerPool& WorkerPool::shared() {
    static WorkerPool* const pool = new WorkerPool;
    return *pool;
}

WorkerPool::WorkerPool() : cores_(std::max(2U, std::thread::hardware_concurrency())) {
    // The statics that blocks use are about to be destroyed.
    std::atexit([] {
        WorkerPool& pool = shared();
        const std::lock_guard lock(pool.mutex_);
        pool.closed_ = true;
    });
}

void WorkerPool::submit(Block job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    try {
        wakeOne();
        watchForStall();
    } catch (...) {                    // neither memory nor a thread
        job = std::move(jobs_.back()); // what it holds is released after the lock
        jobs_.pop_back();
        throw;
    }
}

bool WorkerPool::maySatisfyOneMore() const noexcept {
    return !closed_ && !jobs_.empty() && running_ + grants_ < cores_ + stallAllowance_;
}

void WorkerPool::wakeOne() {
    if (!maySatisfyOneMore() || grants_ >= jobs_.size())
        return;
    if (idle_ > 0) {
        --idle_;
        ++grants_;
        granted_.notify_one();
    } else if (threads_ < maxThreads) {
        startThread();
    }
}

void WorkerPool::startThread() {
    try {
        std::thread([this] { work(); }).detach();
    } catch (...) { // neither memory nor a thread
        if (threads_ == 0)
            throw;
        return; // the threads there are will come to the job
    }
    ++threads_;
    ++grants_;
}

void WorkerPool::work() {
    isWorker = true;
    std::unique_lock lock(mutex_);
    while (awaitGrant(lock)) {
        --grants_;
        runJobs(lock);
        ++idle_;
    }
    --threads_;
}

/// False when nothing came for so long that the thread is to end.
bool WorkerPool::awaitGrant(std::unique_lock<std::mutex>& lock) {
    while (grants_ == 0) {
        const bool timedOut = granted_.wait_for(lock, idleLifetime) == std::cv_status::timeout;
        if (timedOut && grants_ == 0 && idle_ > 0) {
            --idle_;
            return false;
        }
    }
    return true;
}

void WorkerPool::runJobs(std::unique_lock<std::mutex>& lock) {
    while (maySatisfyOneMore()) {
        Block job = std::move(jobs_.front());
        jobs_.pop_front();
        ++running_;
        ++started_;
        lock.unlock();
        runBlock(job);
        job = nullptr;
        lock.lock();
        --running_;
    }
}

void WorkerPool::watchForStall() {
    if (watching_ || jobs_.empty() || running_ + grants_ < cores_)
        return;
    Timer::shared().schedule(std::chrono::steady_clock::now() + stallCheckInterval,
                             [this] { checkStall(); });
    watching_ = true;
    startedAtLastCheck_ = started_;
}

void WorkerPool::checkStall() {
    const std::lock_guard lock(mutex_);
    watching_ = false;
    if (jobs_.empty()) {
        stallAllowance_ = 0;
        return;
    }
    if (started_ == startedAtLastCheck_ && stallAllowance_ < maxStallAllowance) {
        ++stallAllowance_;
        wakeOne();
    }
    try {
        watchForStall();
    } catch (...) { // no memory: whoever submits next has it watched again
    }
}

WorkerPool::Blocked::Blocked() noexcept {
    if (!isWorker)
        return;
    WorkerPool& pool = shared();
    const std::lock_guard lock(pool.mutex_);
    --pool.running_;
    pool.wakeOne();
}

WorkerPool::Blocked::~Blocked() {
    if (!isWorker)
        return;
    WorkerPool& pool = shared();
    const std::lock_guard lock(pool.mutex_);
    ++pool.running_;
}

} // namespace zorvan::internal
