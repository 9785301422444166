#pragma once

namespace zorvan {

/// Threads, as far as the main one differs from the others.
class NSThread {
public:
    /// Whether the calling thread is the main thread: the one the process began with, whichever
    /// thread loaded or first used this library. In a forked process that is the one that forked.
    static bool isMainThread() noexcept;
};

} // namespace zorvan
