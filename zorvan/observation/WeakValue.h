#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <memory>
#include <utility>

namespace zorvan {

/// A box that refers to an object without keeping it alive. A copy refers to the same object.
///
/// Not locked: `value` may be called from several threads at once, but not while another sets it.
template <class Object>
class WeakValue {
public:
    /// The object, by its label.
    struct Labelled {
        Required<std::shared_ptr<Object>> value;
    };

    WeakValue() noexcept = default;
    /// Refers to the object; null is allowed.
    /// @{
    WeakValue(const std::shared_ptr<Object>& value) noexcept : value_(value) {}
    WeakValue(const Labelled& argument) noexcept : value_(argument.value.value) {}
    /// @}

    /// The object; null once it is gone, or when there never was one.
    /// @{
    std::shared_ptr<Object> value() const noexcept { return value_.lock(); }
    void setValue(const std::shared_ptr<Object>& value) noexcept { value_ = value; }
    /// @}

private:
    std::weak_ptr<Object> value_;
};

/// The box for a pointer's class.
template <class Object>
WeakValue(std::shared_ptr<Object>) -> WeakValue<Object>;

/// A weak box for an object of any class.
class OpaqueWeakValue : public WeakValue<const void> {
public:
    using WeakValue<const void>::WeakValue;
    /// Refers to the object, whatever its class; null is allowed.
    template <class Object>
    OpaqueWeakValue(const std::shared_ptr<Object>& value) noexcept
        : WeakValue<const void>(std::shared_ptr<const void>(value)) {}
};

} // namespace zorvan
