#include <zorvan/settings/StoredUserDefaultsCoder.h>

#include <zorvan/platform/foundation/internal/valueUnder.h>
#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/GeometryCoders.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/settings/TimeCoders.h>
#include <zorvan/settings/URLCoders.h>
#include <zorvan/settings/internal/conversions.h>

#include <utility>

namespace zorvan {

namespace {

using Strings = std::vector<std::string>;
using URLs = std::vector<URL>;

template <class Value>
std::optional<Value> ofThatKind(const PropertyList& object) {
    const auto* value = object.as<Value>();
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::uint64_t> unsignedIn(const PropertyList& object) {
    if (const auto* number = object.as<NSNumber>(); number && number->isUnsigned())
        return number->uint64Value();
    const std::int64_t integer = internal::asInteger(object);
    return integer >= 0 ? std::optional(static_cast<std::uint64_t>(integer)) : std::nullopt;
}

std::optional<URLs> urlsIn(const PropertyList& object) {
    URLs urls;
    const auto texts = internal::asStrings(object);
    for (const std::string& text : texts.value_or(Strings()))
        if (auto url = URL::make({.string = text}))
            urls.push_back(std::move(*url));
    return texts && urls.size() == texts->size() ? std::optional(std::move(urls)) : std::nullopt;
}

std::optional<BundleVersion> versionIn(const PropertyList& object) {
    const auto text = internal::asString(object);
    return text ? BundleVersion::make(*text) : std::nullopt;
}

std::optional<NSDateFormatterStyle> styleIn(const PropertyList& object) {
    const auto* number = object.as<NSNumber>();
    return number ? std::optional(static_cast<NSDateFormatterStyle>(number->uint64Value()))
                  : std::nullopt;
}

/// A shape from the numbers under the names; absent unless all of them are there.
template <class Shape, class... Name>
std::optional<Shape> shapeIn(const PropertyList& object, Name... names) {
    const auto* dictionary = object.as<PropertyList::Dictionary>();
    const auto number = [&](const char* name) {
        return internal::valueUnder<NSNumber>(*dictionary, name);
    };
    if (!dictionary || (!number(names) || ...))
        return std::nullopt;
    return Shape(number(names)->doubleValue()...);
}

/// What an object reads as.
template <class Value>
constexpr auto read = &ofThatKind<Value>;
template <>
constexpr auto read<PropertyList> = [](const PropertyList& object) { return object; };
template <>
constexpr auto read<bool> = &internal::asBool;
template <>
constexpr auto read<std::int64_t> = &internal::asInteger;
template <>
constexpr auto read<std::uint64_t> = &unsignedIn;
template <>
constexpr auto read<float> =
    [](const PropertyList& object) { return static_cast<float>(internal::asDouble(object)); };
template <>
constexpr auto read<double> = &internal::asDouble;
template <>
constexpr auto read<std::string> = &internal::asString;
template <>
constexpr auto read<Strings> = &internal::asStrings;
template <>
constexpr auto read<URL> = &internal::asURL;
template <>
constexpr auto read<URLs> = &urlsIn;
template <>
constexpr auto read<BundleVersion> = &versionIn;
template <>
constexpr auto read<NSDateFormatterStyle> = &styleIn;
template <>
constexpr auto read<CGPoint> =
    [](const PropertyList& object) { return shapeIn<CGPoint>(object, "x", "y"); };
template <>
constexpr auto read<CGSize> =
    [](const PropertyList& object) { return shapeIn<CGSize>(object, "width", "height"); };
template <>
constexpr auto read<CGRect> =
    [](const PropertyList& object) { return shapeIn<CGRect>(object, "x", "y", "width", "height"); };

// The object that a value becomes: itself, unless told otherwise.

template <class Value>
PropertyList formOf(const Value& value) {
    return value;
}

PropertyList formOf(const Strings& value) {
    return PropertyList::Array(value.begin(), value.end());
}

PropertyList formOf(const URL& value) { return value.absoluteString(); }

PropertyList formOf(const URLs& value) {
    PropertyList::Array texts;
    for (const URL& url : value)
        texts.emplace_back(url.absoluteString());
    return texts;
}

PropertyList formOf(const BundleVersion& value) { return value.rawValue(); }

PropertyList formOf(NSDateFormatterStyle value) { return static_cast<std::uint64_t>(value); }

PropertyList formOf(const CGPoint& value) {
    return PropertyList::Dictionary{{"x", value.x}, {"y", value.y}};
}

PropertyList formOf(const CGSize& value) {
    return PropertyList::Dictionary{{"width", value.width}, {"height", value.height}};
}

PropertyList formOf(const CGRect& value) {
    return PropertyList::Dictionary{{"x", value.origin.x},
                                    {"y", value.origin.y},
                                    {"width", value.width()},
                                    {"height", value.height()}};
}

} // namespace

template <class Value>
std::optional<Value> StoredUserDefaultsCoder<Value>::decode(NSUserDefaults& from,
                                                            std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    return object ? std::optional<Value>(read<Value>(*object)) : std::nullopt;
}

template <class Value>
void StoredUserDefaultsCoder<Value>::encode(const std::optional<Value>& value, NSUserDefaults& to,
                                            std::string_view key) const {
    to.setObject(value ? std::optional(formOf(*value)) : std::nullopt, key);
}

template class StoredUserDefaultsCoder<bool>;
template class StoredUserDefaultsCoder<std::int64_t>;
template class StoredUserDefaultsCoder<std::uint64_t>;
template class StoredUserDefaultsCoder<float>;
template class StoredUserDefaultsCoder<double>;
template class StoredUserDefaultsCoder<std::string>;
template class StoredUserDefaultsCoder<Strings>;
template class StoredUserDefaultsCoder<Data>;
template class StoredUserDefaultsCoder<Date>;
template class StoredUserDefaultsCoder<NSNumber>;
template class StoredUserDefaultsCoder<PropertyList::Array>;
template class StoredUserDefaultsCoder<PropertyList::Dictionary>;
template class StoredUserDefaultsCoder<PropertyList>;
template class StoredUserDefaultsCoder<URL>;
template class StoredUserDefaultsCoder<URLs>;
template class StoredUserDefaultsCoder<BundleVersion>;
template class StoredUserDefaultsCoder<CGPoint>;
template class StoredUserDefaultsCoder<CGSize>;
template class StoredUserDefaultsCoder<CGRect>;
template class StoredUserDefaultsCoder<NSDateFormatterStyle>;

} // namespace zorvan
