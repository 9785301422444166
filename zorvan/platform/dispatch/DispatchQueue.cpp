#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <zorvan/platform/dispatch/internal/MainDispatchQueue.h>
#include <zorvan/platform/dispatch/internal/SerialQueue.h>
#include <zorvan/platform/dispatch/internal/Timer.h>
#include <zorvan/platform/dispatch/internal/WorkerPool.h>

namespace zorvan {

namespace {

class ConcurrentQueue final : public DispatchQueue {
public:
    explicit ConcurrentQueue(std::string label) : DispatchQueue(std::move(label)) {}

private:
    void enqueue(Block block) override { internal::WorkerPool::shared().submit(std::move(block)); }

    void runSync(BlockReference block) override { block(); }
};

} // namespace

std::shared_ptr<DispatchQueue> DispatchQueue::create(std::string label, Attributes attributes) {
    if (attributes == Attributes::concurrent)
        return std::make_shared<ConcurrentQueue>(std::move(label));
    return std::make_shared<internal::SerialQueue>(std::move(label));
}

const std::shared_ptr<DispatchQueue>& DispatchQueue::main() {
    static const auto* const queue =
        new std::shared_ptr<DispatchQueue>(internal::MainDispatchQueue::shared());
    return *queue;
}

const std::shared_ptr<DispatchQueue>& DispatchQueue::global() {
    static const auto* const queue =
        new std::shared_ptr<DispatchQueue>(create("global", Attributes::concurrent));
    return *queue;
}

void DispatchQueue::asyncAfter(std::chrono::steady_clock::time_point deadline, Block block) {
    if (deadline <= std::chrono::steady_clock::now())
        return async(std::move(block));
    internal::Timer::shared().schedule(
        deadline, [self = shared_from_this(), block = std::move(block)]() mutable {
            self->async(std::move(block));
        });
}

void DispatchQueue::asyncAfter(std::chrono::nanoseconds delay, Block block) {
    asyncAfter(internal::Timer::after(delay), std::move(block));
}

} // namespace zorvan
