#pragma once

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/internal/Turn.h>

#include <deque>
#include <mutex>
#include <string>
#include <variant>

namespace zorvan::internal {

class SerialQueue final : public DispatchQueue {
public:
    explicit SerialQueue(std::string label) : DispatchQueue(std::move(label)) {}

private:
    /// A block to run, or the turn of a thread that waits in `sync` and runs its block itself.
    using Item = std::variant<Block, Turn*>;

    void enqueue(Block block) override;
    void runSync(BlockReference block) override;
    void awaitTurn();
    void passOn();
    void schedule();
    void scheduleCertainly() noexcept;
    void drain();

    std::mutex mutex_;
    std::deque<Item> items_;
    bool busy_ = false; // a thread runs a block, or is on its way to
};

} // namespace zorvan::internal
