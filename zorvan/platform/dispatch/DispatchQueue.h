#pragma once

#include <zorvan/platform/dispatch/Block.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace zorvan {

/// A queue that runs blocks.
///
/// The main queue runs them on the main thread, one at a time, whenever the application drains it
/// (see MainQueue). A serial queue runs them one at a time in the order they came, on whichever
/// worker thread is free. A concurrent queue starts them in that order and lets them overlap.
///
/// Blocks that are queued keep their queue alive: an application may drop its reference at once and
/// the blocks still run. From `exit()` on no further block starts, and what is still queued is
/// neither run nor destroyed.
class DispatchQueue : public std::enable_shared_from_this<DispatchQueue> {
public:
    /// Whether blocks run one at a time, or may overlap.
    enum class Attributes { serial, concurrent };

    /// A new queue. The label is for people: debuggers and messages.
    static std::shared_ptr<DispatchQueue> create(std::string label,
                                                 Attributes attributes = Attributes::serial);

    /// The queue of the main thread.
    static const std::shared_ptr<DispatchQueue>& main();

    /// The concurrent queue shared by the whole process.
    static const std::shared_ptr<DispatchQueue>& global();

    /// Nothing is queued any more then, since blocks that are queued keep their queue.
    virtual ~DispatchQueue() = default;
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    /// As it was given.
    const std::string& label() const noexcept { return label_; }

    /// Queues the block and returns at once.
    void async(Block block) { enqueue(std::move(block)); }

    /// Queues the block once the deadline has come; at once when it has passed.
    /// @{
    void asyncAfter(std::chrono::steady_clock::time_point deadline, Block block);
    void asyncAfter(std::chrono::nanoseconds delay, Block block);
    /// @}

    /// Runs the block in its turn and returns its result; an exception it throws reaches the
    /// caller. The block runs on the calling thread, except on the main queue, where the main
    /// thread runs it when it next drains.
    ///
    /// Stops the program when the caller already runs on this queue (for the main queue: on the
    /// main thread), because the call could never return.
    template <class Callable>
    std::invoke_result_t<Callable&> sync(Callable&& block) {
        using Result = std::invoke_result_t<Callable&>;
        if constexpr (std::is_void_v<Result>) {
            runSync(BlockReference(block));
        } else if constexpr (std::is_reference_v<Result>) {
            std::remove_reference_t<Result>* result = nullptr;
            auto keep = [&] { result = std::addressof(block()); };
            runSync(BlockReference(keep));
            return static_cast<Result>(*result);
        } else {
            std::optional<Result> result;
            auto keep = [&] { result.emplace(block()); };
            runSync(BlockReference(keep));
            return std::move(*result);
        }
    }

protected:
    /// For queues of the library's own.
    explicit DispatchQueue(std::string label) : label_(std::move(label)) {}

private:
    virtual void enqueue(Block block) = 0;
    virtual void runSync(BlockReference block) = 0;

    std::string label_;
};

} // namespace zorvan
