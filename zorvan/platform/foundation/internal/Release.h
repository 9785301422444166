#pragma once

namespace zorvan {

/// Lets a `std::unique_ptr` own an object of a C library: `std::unique_ptr<T, Release<T_free>>`.
template <auto release>
struct Release {
    template <class Object>
    void operator()(Object* object) const noexcept {
        release(object);
    }
};

} // namespace zorvan
