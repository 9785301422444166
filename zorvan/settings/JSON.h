#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// Why a value has no JSON form, or JSON is not of the type that was asked for: `what()` is a short
/// lower-case phrase for people.
class JSONError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A JSON value.
class JSON {
public:
    using Array = std::vector<JSON>; ///< In order.
    /// By name, in the order of the bytes.
    using Object = std::map<std::string, JSON, std::less<>>;

    /// How deep arrays and objects may stand within each other.
    static constexpr std::size_t maximumDepth = 512;

    JSON() = default; ///< null
    /// A value of that kind. Arrays and objects too deep, and reals that are not finite, are told
    /// of by `text`.
    /// @{
    JSON(bool value) : value_(value) {}
    JSON(std::int64_t value) : value_(value) {}
    JSON(std::uint64_t value) : value_(value) {}
    JSON(double value) : value_(value) {}
    JSON(std::string value) : value_(std::move(value)) {}
    JSON(const char* value) : value_(std::string(value)) {}
    JSON(Array value) : value_(std::move(value)) {}
    JSON(Object value) : value_(std::move(value)) {}
    /// @}

    /// Reads a text in UTF-8, whatever value it is. Of a name that stands twice, the last one
    /// counts; an integer beyond 64 bits becomes a real. Throws `JSONError` when the text is no
    /// JSON, is too deep, or has a number beyond the reals. Safe on any bytes.
    static JSON parse(std::span<const std::byte> text);

    /// The value as one line, names in the order of their bytes. Throws `JSONError` when a number
    /// is not finite, a text is not UTF-8, or the value is too deep.
    Data text() const;

    /// Whether it is the value null.
    bool isNull() const noexcept { return std::holds_alternative<std::monostate>(value_); }

    /// The value when it is of that kind, else null: `bool`, `std::int64_t`, `std::uint64_t` (what
    /// does not fit the signed one), `double`, `std::string`, `Array`, `Object`.
    /// @{
    template <class Kind>
    const Kind* as() const noexcept {
        return std::get_if<Kind>(&value_);
    }
    template <class Kind>
    Kind* as() noexcept {
        return std::get_if<Kind>(&value_);
    }
    /// @}

    /// Of the same kind and equal: the integer 1 is not the real 1.0.
    friend bool operator==(const JSON& a, const JSON& b) { return a.value_ == b.value_; }

private:
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Array,
                 Object>
        value_;
};

} // namespace zorvan
