#pragma once

#include <zorvan/platform/dispatch/DispatchQueue.h>

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

private:
    void enqueue(Block block) override;
    void runSync(BlockReference block) override;
    Block takeFirst();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Block> blocks_;
    std::uint64_t taken_ = 0; // blocks ever taken from the front
    int event_ = -1;          // readable exactly while there are blocks
    bool stopped_ = false;
};

} // namespace zorvan::internal
