#include <zorvan/platform/dispatch/internal/SerialQueue.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <chrono>
#include <thread>
#include <utility>

namespace zorvan::internal {

namespace {

// So that one busy queue does not keep a worker from the others for ever.
constexpr int blocksInARow = 64;

/// While it lives, the calling thread runs a block of the queue. Nests.
class CurrentQueue {
public:
    explicit CurrentQueue(const SerialQueue& queue) noexcept
        : queue_(queue), outer_(std::exchange(innermost_, this)) {}
    ~CurrentQueue() { innermost_ = outer_; }
    CurrentQueue(const CurrentQueue&) = delete;
    CurrentQueue& operator=(const CurrentQueue&) = delete;

    static bool includes(const SerialQueue& queue) noexcept {
        const CurrentQueue* current = innermost_;
        while (current && &current->queue_ != &queue)
            current = current->outer_;
        return current != nullptr;
    }

private:
    static thread_local CurrentQueue* innermost_;

    const SerialQueue& queue_;
    CurrentQueue* outer_;
};

thread_local CurrentQueue* CurrentQueue::innermost_ = nullptr;

} // namespace

void SerialQueue::enqueue(Block block) {
    bool wasBusy;
    {
        const std::lock_guard lock(mutex_);
        items_.emplace_back(std::move(block));
        wasBusy = std::exchange(busy_, true);
    }
    if (wasBusy)
        return;
    try {
        schedule();
    } catch (...) {
        const std::lock_guard lock(mutex_);
        items_.pop_front(); // what came behind it meanwhile waits for the next
        busy_ = false;
        throw;
    }
}

void SerialQueue::schedule() {
    WorkerPool::shared().submit(
        [self = std::static_pointer_cast<SerialQueue>(shared_from_this())] { self->drain(); });
}

/// Blocks that wait already would never run, and no one is there who could be told: waits for
/// memory, or a thread.
void SerialQueue::scheduleCertainly() noexcept {
    for (;;) {
        try {
            return schedule();
        } catch (...) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
}

void SerialQueue::drain() {
    const CurrentQueue current(*this);
    for (int i = 0; i < blocksInARow; ++i) {
        Item item;
        {
            const std::lock_guard lock(mutex_);
            if (items_.empty()) {
                busy_ = false;
                return;
            }
            item = std::move(items_.front());
            items_.pop_front();
        }
        if (Turn** turn = std::get_if<Turn*>(&item))
            return (*turn)->give();
        runBlock(std::get<Block>(item));
    }
    scheduleCertainly();
}

void SerialQueue::runSync(BlockReference block) {
    if (CurrentQueue::includes(*this))
        fatalError("sync called on the queue that the caller is running on.");
    awaitTurn();
    struct PassOn {
        SerialQueue& queue;
        ~PassOn() { queue.passOn(); }
    } const passOn{*this};
    const CurrentQueue current(*this);
    block();
}

void SerialQueue::awaitTurn() {
    Turn turn;
    {
        const std::lock_guard lock(mutex_);
        if (!std::exchange(busy_, true))
            return;
        items_.emplace_back(&turn);
    }
    turn.wait();
}

void SerialQueue::passOn() {
    {
        const std::lock_guard lock(mutex_);
        if (items_.empty()) {
            busy_ = false;
            return;
        }
        if (Turn** turn = std::get_if<Turn*>(&items_.front())) {
            (*turn)->give();
            items_.pop_front();
            return;
        }
    }
    scheduleCertainly();
}

} // namespace zorvan::internal
