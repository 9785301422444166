#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/NSNumber.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// A property-list value: a number or truth value, a text, a date, bytes, an array or a dictionary
/// of such values with text keys. What settings, bundles, image properties and messages between
/// processes are made of.
class PropertyList {
public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList, std::less<>>;

    PropertyList(NSNumber value) : value_(value) {}
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number> PropertyList(Number value)
        : value_(boxed(value)) {}
    PropertyList(std::string value) : value_(std::move(value)) {}
    PropertyList(std::string_view value) : value_(std::string(value)) {}
    PropertyList(const char* value) : value_(std::string(value)) {}
    PropertyList(Date value) : value_(value) {}
    PropertyList(Data value) : value_(std::move(value)) {}
    PropertyList(Array value) : value_(std::move(value)) {}
    PropertyList(Dictionary value) : value_(std::move(value)) {}

    /// The value when it is of that kind, else null. A number answers to `NSNumber` only.
    template <class Kind>
    const Kind* as() const noexcept {
        return std::get_if<Kind>(&value_);
    }
    template <class Kind>
    Kind* as() noexcept {
        return std::get_if<Kind>(&value_);
    }

    /// Equal in kind and content; numbers by value.
    friend bool operator==(const PropertyList& a, const PropertyList& b) {
        return a.value_ == b.value_;
    }

private:
    template <class Number>
    static NSNumber boxed(Number value) {
        if constexpr (std::same_as<Number, bool>)
            return NSNumber(value);
        else if constexpr (std::unsigned_integral<Number> &&
                           sizeof(Number) == sizeof(std::uint64_t))
            return NSNumber(static_cast<std::uint64_t>(value));
        else if constexpr (std::integral<Number>)
            return NSNumber(static_cast<std::int64_t>(value));
        else
            return NSNumber(static_cast<double>(value));
    }

    std::variant<NSNumber, std::string, Date, Data, Array, Dictionary> value_;
};

} // namespace zorvan
