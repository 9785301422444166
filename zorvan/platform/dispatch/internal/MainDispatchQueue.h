#pragma once

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/internal/IdleSource.h>
#include <zorvan/platform/foundation/internal/Wakeup.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

namespace zorvan::internal {

/// The main queue. Never destroyed.
class MainDispatchQueue final : public DispatchQueue {
public:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    MainDispatchQueue() : DispatchQueue("main") {}

    static const std::shared_ptr<MainDispatchQueue>& shared();

    bool run(Deadline deadline);
    void stop();
    std::size_t drain();
    int fileDescriptor();

    /// Polls the source from now on while `run` has nothing to do. There is one for the process, at
    /// most, and it stays for good. From any thread.
    void setIdleSource(IdleSource& source);

    // Around a fork. The child has the blocks, and nothing of the source.
    void lockForFork() { mutex_.lock(); }
    void endFork(bool isChild);

private:
    void enqueue(Block block) override;
    void runSync(BlockReference block) override;
    Block takeFirst();
    bool awaitWork(std::unique_lock<std::mutex>& lock, Deadline deadline);
    void pollIdleSource(std::unique_lock<std::mutex>& lock, Deadline deadline);
    void wake();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Block> blocks_;
    std::uint64_t taken_ = 0;     // blocks ever taken from the front
    std::optional<Wakeup> event_; // readable exactly while there are blocks; made when asked for
    bool stopped_ = false;

    IdleSource* idleSource_ = nullptr;
    std::optional<Wakeup> idleWakeup_; // there with the source
    bool isPolling_ = false;           // the main thread polls, and no wake-up is on its way
};

} // namespace zorvan::internal
