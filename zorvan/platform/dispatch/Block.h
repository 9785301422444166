#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <type_traits>

namespace zorvan {

/// Work handed to a queue. A block handed over for later must not throw: an exception that leaves
/// it ends the program through `std::terminate`.
using Block = std::function<void()>;

/// A callable that outlives the call it is passed to; neither copied nor owned.
class BlockReference {
public:
    /// Refers to the callable.
    template <class Callable>
    requires(!std::same_as<std::remove_cv_t<Callable>, BlockReference>) explicit BlockReference(
        Callable& callable) noexcept
        : callable_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
          call_([](void* c) { (*static_cast<Callable*>(c))(); }) {}

    /// Calls it, on this thread.
    void operator()() const { call_(callable_); }

private:
    void* callable_;
    void (*call_)(void*);
};

} // namespace zorvan
