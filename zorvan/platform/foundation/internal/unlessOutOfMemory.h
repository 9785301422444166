#pragma once

#include <new>
#include <system_error>

namespace zorvan::internal {

/// For threads that have nobody to tell: whether there was memory for it, and for a thread.
template <class Action>
bool unlessOutOfMemory(Action action) {
    try {
        action();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::resource_unavailable_try_again)
            throw;
        return false;
    }
}

} // namespace zorvan::internal
