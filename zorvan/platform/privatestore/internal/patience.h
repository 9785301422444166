#pragma once

#include <chrono>
#include <thread>

namespace zorvan::privatestore {

/// How long one waits for other processes.
inline constexpr std::chrono::milliseconds patience{5000};

/// Tries something again and again, for what nobody else waits for; false when it was in vain.
template <class Try>
bool waitFor(Try isDone) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!isDone()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace zorvan::privatestore
