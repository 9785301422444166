#pragma once

namespace zorvan::internal {

/// While it lives, the calling thread runs a block of the queue at that address. Nests.
class CurrentQueue {
public:
    explicit CurrentQueue(const void* queue) noexcept;
    ~CurrentQueue();
    CurrentQueue(const CurrentQueue&) = delete;
    CurrentQueue& operator=(const CurrentQueue&) = delete;

    static bool includes(const void* queue) noexcept;

private:
    const void* queue_;
    CurrentQueue* outer_;
};

} // namespace zorvan::internal
