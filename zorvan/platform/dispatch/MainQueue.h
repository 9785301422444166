#pragma once

#include <chrono>
#include <cstddef>

namespace zorvan {

/// How an application runs the blocks of the main queue: it hands the main thread over with `run`,
/// or drains the queue when it likes, or has its own event loop watch `fileDescriptor` and drain
/// then.
///
/// The functions may nest: a block may itself run or drain the queue, which goes on with the blocks
/// behind it. `run`, `runUntil` and `drain` stop the program when called off the main thread.
class MainQueue {
public:
    /// Runs blocks as they come until `stop` is called.
    static void run();

    /// As `run`, but also returns at the deadline; true when `stop` ended it.
    static bool runUntil(std::chrono::steady_clock::time_point deadline);

    /// Makes the innermost `run` or `runUntil` return after the block in progress; when none is
    /// running, the next one returns at once. Blocks still queued stay queued. From any thread.
    static void stop();

    /// Runs the blocks that are queued now, not those they queue. The number of blocks run.
    static std::size_t drain();

    /// A descriptor that `poll` finds readable exactly while blocks are queued. It stays the
    /// queue's: do not read from it or close it. From any thread. Throws `std::system_error` when
    /// the process can open no more descriptors.
    static int fileDescriptor();
};

} // namespace zorvan
