#pragma once

#include <poll.h>

namespace zorvan::internal {

/// What arrives from outside and can be taken by the main thread itself while that has nothing to
/// do in `MainQueue::run`, which spares the hop from another thread. Both functions are called on
/// the main thread, in turns.
class IdleSource {
public:
    /// What to poll for while the main queue is empty; a descriptor of -1 for nothing.
    virtual pollfd beginIdle() = 0;

    /// Called before blocks run, with what was found, perhaps nothing; it may queue blocks but must
    /// not run any.
    virtual void endIdle(short events) = 0;

protected:
    ~IdleSource() = default;
};

} // namespace zorvan::internal
