#pragma once

#include <zorvan/settings/UserDefaultsKeys.h>

#include <concepts>
#include <type_traits>
#include <utility>

namespace zorvan {

class NSUserDefaults;

/// What `store[key]` is: reads when it is used as a value, writes when it is assigned to.
template <GenericUserDefaultsKey Key>
class SettingReference {
public:
    /// The coder's type; for an `OptionalUserDefaultsKey` an `std::optional` of it.
    using Value = std::remove_const_t<decltype(Key::value)>;

    /// Made by `store[key]`; refers to both.
    SettingReference(NSUserDefaults& store, const Key& key) noexcept : store_(store), key_(key) {}
    SettingReference(const SettingReference&) = default;

    /// Reads, as `NSUserDefaults::value` does.
    /// @{
    Value value() const;
    operator Value() const { return value(); }
    /// @}

    /// Writes, and posts the notification.
    /// @{
    const SettingReference& operator=(const Value& value) const {
        assign(value);
        return *this;
    }
    const SettingReference& operator=(const SettingReference& other) const {
        assign(other.value());
        return *this;
    }
    /// @}

    /// Reads, has the value changed, and writes once.
    template <std::invocable<Value&> Change>
    void modify(Change&& change) const {
        Value changed = value();
        std::forward<Change>(change)(changed);
        assign(changed);
    }

    /// Reads and writes, which is not atomic: see `NSUserDefaults::modify`. An integer stays at the
    /// end of its range; what a real makes of it is truncated toward zero, and NaN is 0.
    /// @{
    template <class Operand>
    const SettingReference& operator+=(const Operand& operand) const {
        modify([&](Value& value) {
            if constexpr (saturates<Operand>)
                value = detail::saturated(value, operand, true);
            else
                value = static_cast<Value>(value + operand);
        });
        return *this;
    }
    template <class Operand>
    const SettingReference& operator-=(const Operand& operand) const {
        modify([&](Value& value) {
            if constexpr (saturates<Operand>)
                value = detail::saturated(value, operand, false);
            else
                value = static_cast<Value>(value - operand);
        });
        return *this;
    }
    /// @}

    /// Reads and compares.
    friend bool operator==(const SettingReference& reference, const Value& value) {
        return reference.value() == value;
    }

private:
    template <class Operand>
    static constexpr bool saturates = std::integral<Value>&& std::is_arithmetic_v<Operand> &&
                                      !std::same_as<Value, bool> && !std::same_as<Operand, bool>;

    void assign(const Value& value) const;

    NSUserDefaults& store_;
    const Key& key_;
};

} // namespace zorvan
