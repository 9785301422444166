#pragma once

#include <cstdint>
#include <type_traits>

namespace zorvan {

/// Work on a range of rows, `last` not included.
using RowsBody = void (*)(void* context, std::int64_t first, std::int64_t last);

/// Calls `body` with ranges that together make 0 to `count - 1`, each row once, on all processors;
/// returns when all have. A range has at least `grain` rows while there are that many, and all but
/// the last begin and end at a multiple of `grain`. An exception of the body is thrown on.
void parallelRows(std::int64_t count, std::int64_t grain, RowsBody body, void* context);

/// The same with a callable taking (first, last).
template <class Body>
void parallelRows(std::int64_t count, std::int64_t grain, Body&& body) {
    parallelRows(
        count, grain,
        [](void* context, std::int64_t first, std::int64_t last) {
            (*static_cast<std::remove_reference_t<Body>*>(context))(first, last);
        },
        const_cast<void*>(static_cast<const void*>(&body)));
}

} // namespace zorvan
