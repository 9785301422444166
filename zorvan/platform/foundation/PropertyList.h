#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/NSNumber.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// A property-list value: a number or truth value, a text, a date, bytes, an array or a dictionary
/// of such values with text keys. What settings, bundles, image properties and messages between
/// processes are made of.
class PropertyList {
public:
    using Array = std::vector<PropertyList>; ///< In order.
    /// By key, in the order of the bytes.
    using Dictionary = std::map<std::string, PropertyList, std::less<>>;

    /// A value of that kind.
    /// @{
    PropertyList(NSNumber value);
    template <class Number>
    requires std::integral<Number> || std::floating_point<Number> PropertyList(Number value)
        : PropertyList(boxed(value)) {}
    PropertyList(std::string value);
    PropertyList(std::string_view value);
    PropertyList(const char* value);
    PropertyList(Date value);
    PropertyList(Data value);
    PropertyList(Array value);
    PropertyList(Dictionary value);
    /// @}
    /// A value of its own, also when it is assigned from within the one that it replaces:
    /// `list = list.as<PropertyList::Array>()->front()`.
    /// @{
    PropertyList(const PropertyList& other);
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(const PropertyList& other);
    PropertyList& operator=(PropertyList&& other) noexcept;
    /// @}
    ~PropertyList();

    /// The value when it is of that kind. For `NSNumber`, `std::string`, `Date`, `Data`, `Array`
    /// and `Dictionary` a pointer to it, or null. For `bool`, `std::int64_t` and `double` what the
    /// number converts to as in `NSNumber`, for `std::string_view` the text, or absent. A value
    /// that is about to go, such as the result of a call, gives itself away: always an optional, no
    /// views.
    /// @{
    template <class Kind>
    auto as() const& noexcept {
        return asKind<Kind>(*this);
    }
    template <class Kind>
    auto as() & noexcept {
        return asKind<Kind>(*this);
    }
    template <class Kind>
    auto as() && {
        static_assert(!std::same_as<Kind, std::string_view>,
                      "PropertyList::as: a view would outlive the text");
        if constexpr (isStored<Kind>) {
            Kind* const stored = std::get_if<Kind>(&value_);
            return stored ? std::optional<Kind>(std::move(*stored)) : std::nullopt;
        } else {
            return asKind<Kind>(*this);
        }
    }
    /// @}

    /// Equal in kind and content; numbers by value.
    friend bool operator==(const PropertyList& a, const PropertyList& b) { return a.isEqual(b); }

private:
    bool isEqual(const PropertyList& other) const;
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

    using Value = std::variant<NSNumber, std::string, Date, Data, Array, Dictionary>;

    template <class Kind, class Variant>
    struct IsStored;
    template <class Kind, class... Kinds>
    struct IsStored<Kind, std::variant<Kinds...>> : std::disjunction<std::is_same<Kind, Kinds>...> {
    };
    template <class Kind>
    static constexpr bool isStored = IsStored<Kind, Value>::value;

    template <class Kind, class List>
    static auto asKind(List& list) noexcept {
        if constexpr (isStored<Kind>) {
            return std::get_if<Kind>(&list.value_);
        } else if constexpr (std::same_as<Kind, std::string_view>) {
            const auto* text = std::get_if<std::string>(&list.value_);
            return text ? std::optional<Kind>(*text) : std::nullopt;
        } else {
            constexpr bool isReal = std::same_as<Kind, double>;
            constexpr bool isInteger = std::same_as<Kind, std::int64_t>;
            static_assert(isReal || isInteger || std::same_as<Kind, bool>,
                          "PropertyList::as: a value is an NSNumber, bool, std::int64_t, double, "
                          "std::string, std::string_view, Date, Data, Array or Dictionary");
            const auto* number = std::get_if<NSNumber>(&list.value_);
            if constexpr (isReal)
                return number ? std::optional(number->doubleValue()) : std::nullopt;
            else if constexpr (isInteger)
                return number ? std::optional(number->int64Value()) : std::nullopt;
            else
                return number ? std::optional(number->boolValue()) : std::nullopt;
        }
    }

    Value value_;
};

} // namespace zorvan
