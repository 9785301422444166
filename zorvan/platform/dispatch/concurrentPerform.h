#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

namespace zorvan {

namespace internal {

/// Calls `chunk(context, begin, end)` for ranges that together cover 0 ..< iterations once.
void performChunks(std::int64_t iterations, void* context,
                   void (*chunk)(void* context, std::int64_t begin, std::int64_t end));

} // namespace internal

/// Calls `body(i)` once for every i in 0 ..< iterations, spread over the cores, and returns when
/// all calls have; nothing for zero or fewer. The calling thread takes part.
///
/// Calls may nest: an inner loop shares the threads of the outer one, and a thread that waits for
/// its inner loop starts no other iteration of the outer one meanwhile, so a body may hold a lock
/// across an inner loop. When a body throws, iterations not yet begun may be left out and the first
/// exception reaches the caller once the others have ended.
template <class Body>
void concurrentPerform(std::int64_t iterations, Body&& body) {
    using Callable = std::remove_reference_t<Body>;
    internal::performChunks(iterations,
                            const_cast<void*>(static_cast<const void*>(std::addressof(body))),
                            [](void* context, std::int64_t begin, std::int64_t end) {
                                Callable& call = *static_cast<Callable*>(context);
                                for (std::int64_t i = begin; i < end; ++i)
                                    call(i);
                            });
}

} // namespace zorvan
