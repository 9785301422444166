#pragma once

#include <zorvan/platform/dispatch/Block.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace zorvan {

/// A queue of operations that starts them in the order they came and lets as many overlap as it
/// may.
///
/// Operations that are queued keep the queue alive.
class NSOperationQueue : public std::enable_shared_from_this<NSOperationQueue> {
public:
    /// As many at a time as the machine can use.
    static constexpr std::int64_t defaultMaxConcurrentOperationCount = -1;

    /// As many at a time as the machine can use, and without a name.
    static std::shared_ptr<NSOperationQueue> create();

    /// The queue whose operations run on the main thread, one at a time, as blocks of the main
    /// dispatch queue.
    static const std::shared_ptr<NSOperationQueue>& main();

    ~NSOperationQueue();
    NSOperationQueue(const NSOperationQueue&) = delete;
    NSOperationQueue& operator=(const NSOperationQueue&) = delete;

    /// For people: debuggers and messages.
    /// @{
    std::string name() const;
    void setName(std::string name);
    /// @}

    /// How many operations may overlap; 1 makes the queue serial. No effect on the main queue,
    /// where it is always 1. Operations already running are not disturbed. Stops the program for 0
    /// and for negative numbers other than `defaultMaxConcurrentOperationCount`.
    /// @{
    std::int64_t maxConcurrentOperationCount() const;
    void setMaxConcurrentOperationCount(std::int64_t count);
    /// @}

    /// Operations waiting or running.
    std::size_t operationCount() const;

    /// Adds an operation that runs the block.
    void addOperation(Block block);

    /// Returns once no operation waits or runs. Never returns when an operation of the queue itself
    /// calls it; stops the program for the main queue on the main thread.
    void waitUntilAllOperationsAreFinished();

private:
    enum class Kind { background, main };
    struct State;
    explicit NSOperationQueue(Kind kind);

    void startFirst();
    void run();
    bool finishOne();

    const std::unique_ptr<State> state_;
};

} // namespace zorvan
