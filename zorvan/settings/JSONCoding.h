#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/RawRepresentable.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/settings/JSON.h>

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zorvan {

/// A field of a record, by its name in JSON.
template <class Record, class Value>
struct JSONField {
    const char* name;        ///< In JSON.
    Value Record::*member;   ///< In the record.
    bool isOptional = false; ///< Whether JSON may be without it.

    /// A field that JSON must have, unless it is a `std::optional`.
    constexpr JSONField(const char* name_, Value Record::*member_) noexcept
        : name(name_), member(member_) {}

    /// The same field, for JSON that may be without it, such as that of a version before there was
    /// the field: its value is then what a new record has.
    constexpr JSONField orAsInitialized() const noexcept {
        JSONField field = *this;
        field.isOptional = true;
        return field;
    }
};

/// How a type stands in JSON: `static JSON encode(const T&)` and `static T decode(const JSON&)`,
/// which both throw `JSONError`.
///
/// Truth values, integers, reals, texts, `Date` (seconds since the start of 2001), `Data` (base
/// 64), `URL` (its text), vectors, maps, `std::optional` (null, or no field) and types with raw
/// values are known. A record of yours says what its fields are:
///
/// ```cpp
/// struct Window {
///     std::string title;
///     std::optional<double> width;
///     int columns = 4; // since version 2
///     static constexpr auto jsonFields = std::tuple(
///         JSONField("title", &Window::title), JSONField("width", &Window::width),
///         JSONField("columns", &Window::columns).orAsInitialized());
/// };
/// ```
///
/// It needs a default constructor. Any other type is coded by a specialisation of this one. A map
/// whose keys are not texts is an array of each key and its value in turn.
template <class T>
struct JSONCoding;

/// A type that `JSONCoding` knows.
template <class T>
concept JSONCodable = requires(const T& value, const JSON& json) {
    { JSONCoding<T>::encode(value) } -> std::convertible_to<JSON>;
    { JSONCoding<T>::decode(json) } -> std::convertible_to<T>;
};

/// A record that lists its fields for `JSONCoding`.
template <class T>
concept RecordWithJSONFields = requires {
    T::jsonFields;
};

namespace detail {

/// The value of that kind, or a `JSONError` that says what was expected.
template <class Kind>
const Kind& expected(const JSON& json, const char* what) {
    const Kind* value = json.as<Kind>();
    if (!value)
        throw JSONError(std::string("there is no ") + what);
    return *value;
}

/// An integer of the signed or unsigned 64-bit range, from an integer or a whole real.
std::int64_t signedInteger(const JSON& json);
std::uint64_t unsignedInteger(const JSON& json);
double real(const JSON& json);

} // namespace detail

/// Itself.
template <>
struct JSONCoding<JSON> {
    static JSON encode(const JSON& value) { return value; }
    static JSON decode(const JSON& json) { return json; }
};

/// true or false.
template <>
struct JSONCoding<bool> {
    static JSON encode(bool value) { return value; }
    static bool decode(const JSON& json) { return detail::expected<bool>(json, "truth value"); }
};

/// An integer, or a real without a fraction; it must fit the type.
template <std::integral T>
struct JSONCoding<T> {
    static JSON encode(T value) {
        if constexpr (std::signed_integral<T>)
            return static_cast<std::int64_t>(value);
        else
            return static_cast<std::uint64_t>(value);
    }
    static T decode(const JSON& json) {
        if constexpr (std::signed_integral<T>)
            return fitting(detail::signedInteger(json));
        else
            return fitting(detail::unsignedInteger(json));
    }

private:
    template <class Wide>
    static T fitting(Wide value) {
        if (static_cast<Wide>(static_cast<T>(value)) != value)
            throw JSONError("an integer does not fit its type");
        return static_cast<T>(value);
    }
};

template <std::floating_point T>
struct JSONCoding<T> {
    static JSON encode(T value) { return static_cast<double>(value); }
    static T decode(const JSON& json) {
        const double number = detail::real(json);
        if (std::abs(number) > static_cast<double>(std::numeric_limits<T>::max()))
            throw JSONError("a number does not fit its type");
        return static_cast<T>(number);
    }
};

/// A text.
template <>
struct JSONCoding<std::string> {
    static JSON encode(const std::string& value) { return value; }
    static std::string decode(const JSON& json) {
        return detail::expected<std::string>(json, "text");
    }
};

/// A number: seconds since the start of 2001.
template <>
struct JSONCoding<Date> {
    static JSON encode(Date value);
    static Date decode(const JSON& json);
};

/// A text in base 64.
template <>
struct JSONCoding<Data> {
    static JSON encode(const Data& value);
    static Data decode(const JSON& json);
};

/// A text: the whole URL.
template <>
struct JSONCoding<URL> {
    static JSON encode(const URL& value) { return value.absoluteString(); }
    static URL decode(const JSON& json);
};

/// null for an absent value.
template <JSONCodable T>
struct JSONCoding<std::optional<T>> {
    static JSON encode(const std::optional<T>& value) {
        return value ? JSONCoding<T>::encode(*value) : JSON();
    }
    static std::optional<T> decode(const JSON& json) {
        return json.isNull() ? std::nullopt : std::optional<T>(JSONCoding<T>::decode(json));
    }
};

/// An array.
template <JSONCodable T>
struct JSONCoding<std::vector<T>> {
    static JSON encode(const std::vector<T>& values) {
        JSON::Array items;
        for (const auto& value : values)
            items.push_back(JSONCoding<T>::encode(value));
        return items;
    }
    static std::vector<T> decode(const JSON& json) {
        std::vector<T> values;
        for (const JSON& item : detail::expected<JSON::Array>(json, "array"))
            values.push_back(JSONCoding<T>::decode(item));
        return values;
    }
};

/// The raw value; it must stand for something.
template <RawRepresentable E>
struct JSONCoding<E> {
    static JSON encode(const E& value) {
        if constexpr (StringRawRepresentable<E>)
            return std::string(RawRepresentation<E>::rawValue(value));
        else
            return static_cast<std::int64_t>(RawRepresentation<E>::rawValue(value));
    }
    static E decode(const JSON& json) {
        if (std::optional<E> value = made(json))
            return std::move(*value);
        throw JSONError("a raw value stands for nothing");
    }

private:
    static std::optional<E> made(const JSON& json) {
        if constexpr (StringRawRepresentable<E>)
            return RawRepresentation<E>::make(
                std::string_view(detail::expected<std::string>(json, "text")));
        else
            return RawRepresentation<E>::make(detail::signedInteger(json));
    }
};

template <RecordWithJSONFields T>
struct JSONCoding<T> {
    static JSON encode(const T& record) {
        JSON::Object fields;
        std::apply([&](const auto&... field) { (add(fields, field, record), ...); }, T::jsonFields);
        return fields;
    }
    static T decode(const JSON& json) {
        const auto& fields = detail::expected<JSON::Object>(json, "object");
        T record;
        std::apply([&](const auto&... field) { (read(fields, field, record), ...); },
                   T::jsonFields);
        return record;
    }

private:
    template <class Value>
    static void add(JSON::Object& fields, const JSONField<T, Value>& field, const T& record) {
        static_assert(JSONCodable<Value>, "a field of the record has no JSONCoding");
        JSON value = JSONCoding<Value>::encode(record.*field.member);
        if (!value.isNull())
            fields.insert_or_assign(field.name, std::move(value));
    }
    template <class Value>
    static void read(const JSON::Object& fields, const JSONField<T, Value>& field, T& record) {
        const auto found = fields.find(std::string_view(field.name));
        if (found == fields.end() && field.isOptional)
            return;
        record.*field.member =
            JSONCoding<Value>::decode(found == fields.end() ? JSON() : found->second);
    }
};

namespace detail {

template <class Map>
struct JSONMapCoding {
    using Key = typename Map::key_type;
    using Value = typename Map::mapped_type;

    static JSON encode(const Map& values) {
        if constexpr (std::same_as<Key, std::string>) {
            JSON::Object object;
            for (const auto& [key, value] : values)
                object.insert_or_assign(key, JSONCoding<Value>::encode(value));
            return object;
        } else {
            JSON::Array items;
            for (const auto& [key, value] : values) {
                items.push_back(JSONCoding<Key>::encode(key));
                items.push_back(JSONCoding<Value>::encode(value));
            }
            return items;
        }
    }

    static Map decode(const JSON& json) {
        Map values;
        if constexpr (std::same_as<Key, std::string>) {
            for (const auto& [key, value] : expected<JSON::Object>(json, "object"))
                values.insert_or_assign(key, JSONCoding<Value>::decode(value));
        } else {
            const auto& items = expected<JSON::Array>(json, "array");
            if (items.size() % 2 != 0)
                throw JSONError("a key has no value");
            for (std::size_t i = 0; i < items.size(); i += 2)
                values.insert_or_assign(JSONCoding<Key>::decode(items[i]),
                                        JSONCoding<Value>::decode(items[i + 1]));
        }
        return values;
    }
};

} // namespace detail

/// An object when the keys are texts, else an array of each key and its value in turn.
template <JSONCodable Key, JSONCodable Value, class Order, class Allocator>
struct JSONCoding<std::map<Key, Value, Order, Allocator>>
    : detail::JSONMapCoding<std::map<Key, Value, Order, Allocator>> {};

/// As an ordered map.
template <JSONCodable Key, JSONCodable Value, class Hash, class Equal, class Allocator>
struct JSONCoding<std::unordered_map<Key, Value, Hash, Equal, Allocator>>
    : detail::JSONMapCoding<std::unordered_map<Key, Value, Hash, Equal, Allocator>> {};

} // namespace zorvan
