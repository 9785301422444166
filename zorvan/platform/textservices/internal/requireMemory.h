#pragma once

#include <unicode/utypes.h>

#include <new>

namespace zorvan::internal {

/// Throws `std::bad_alloc` when that is what ICU reports, so that no answer comes of it.
inline void requireMemory(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR)
        throw std::bad_alloc();
}

} // namespace zorvan::internal
