#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace zorvan {

/// How much of a processor some work may take, and what ends it then; nothing does when that is
/// empty.
struct TimeLimit {
    std::chrono::nanoseconds time;
    std::function<void()> stop;
};

/// Runs it on a thread with a stack of so many bytes, a multiple of a page, of which what is used
/// takes memory. False, without having run it, when there is no such thread to be had. What it
/// throws is lost.
bool runOnStack(std::size_t byteCount, const std::function<void()>& work, const TimeLimit& limit);

} // namespace zorvan
