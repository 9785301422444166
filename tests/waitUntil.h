#pragma once

#include <zorvan/platform/dispatch/MainQueue.h>

#include <chrono>
#include <functional>

/// Runs the main queue until the condition holds; whether it came to hold in time.
inline bool waitUntil(const std::function<bool()>& condition,
                      std::chrono::seconds limit = std::chrono::seconds(20)) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + limit;
    while (!condition() && Clock::now() < deadline)
        zorvan::MainQueue::runUntil(Clock::now() + std::chrono::milliseconds(2));
    return condition();
}
