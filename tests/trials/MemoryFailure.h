#pragma once

#include <cstddef>

/// Lets one allocation of this thread fail, the one after as many others; by `malloc` and its kin,
/// or by `new` alone in a program with a sanitizer, which has a `malloc` of its own.
class MemoryFailure {
public:
    explicit MemoryFailure(std::size_t after) noexcept;
    ~MemoryFailure();
    MemoryFailure(const MemoryFailure&) = delete;
    MemoryFailure& operator=(const MemoryFailure&) = delete;

    /// Whether it has come.
    static bool hasCome() noexcept;
};
