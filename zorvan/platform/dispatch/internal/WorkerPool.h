#pragma once

#include <zorvan/platform/dispatch/Block.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>

namespace zorvan::internal {

/// An exception that leaves the block ends the program.
inline void runBlock(const Block& block) noexcept { block(); }

/// The threads that run the blocks of every queue but the main one.
///
/// As many blocks run at a time as the machine has cores. A worker that waits for another block
/// (see `Blocked`) does not count, so that blocks waiting for each other cannot starve; and when
/// nothing has started for a while although work is queued, because blocks wait in ways unknown
/// here, the pool lets one more run. Never destroyed: workers may outlive every static object.
class WorkerPool {
public:
    static WorkerPool& shared();

    void submit(Block job);

    /// While it lives, the calling thread waits for something. No effect off the pool's threads.
    class Blocked {
    public:
        Blocked() noexcept;
        ~Blocked();
        Blocked(const Blocked&) = delete;
        Blocked& operator=(const Blocked&) = delete;
    };

private:
    WorkerPool();

    void work();
    bool awaitGrant(std::unique_lock<std::mutex>& lock);
    void runJobs(std::unique_lock<std::mutex>& lock);
    void wakeOne();
    void startThread();
    void watchForStall();
    void checkStall();
    bool maySatisfyOneMore() const noexcept;

    std::mutex mutex_;
    std::condition_variable granted_;
    std::deque<Block> jobs_;
    std::size_t cores_;
    std::size_t stallAllowance_ = 0; // blocks let run beyond the number of cores
    std::size_t threads_ = 0;
    std::size_t idle_ = 0;    // threads asleep that nobody has woken yet
    std::size_t grants_ = 0;  // threads woken or started that have not looked for a job yet
    std::size_t running_ = 0; // threads in a block and not blocked
    std::uint64_t started_ = 0;
    std::uint64_t startedAtLastCheck_ = 0;
    bool watching_ = false;
    bool closed_ = false;
};

} // namespace zorvan::internal
