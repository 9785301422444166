#pragma once

#include <csetjmp>

namespace zorvan::imageio {

/// Runs `work`, which calls a C library that reports errors by a jump to `target`; false when it
/// did. Nothing with a destructor may live in `work` across the library's calls. An exception that
/// `work` itself throws passes through.
template <class Work>
[[gnu::noinline]] bool finishes(std::jmp_buf& target, const Work& work) {
    if (setjmp(target) != 0)
        return false;
    work();
    return true;
}

} // namespace zorvan::imageio
