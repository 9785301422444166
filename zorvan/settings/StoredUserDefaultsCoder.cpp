#include <zorvan/settings/StoredUserDefaultsCoder.h>

#include <zorvan/settings/BundleVersionUDC.h>
#include <zorvan/settings/GeometryCoders.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>
#include <zorvan/settings/ObjectCoders.h>
#include <zorvan/settings/TimeCoders.h>
#include <zorvan/settings/URLCoders.h>
#include <zorvan/settings/internal/conversions.h>

#include <array>
#include <cstddef>
#include <utility>

namespace zorvan {

namespace {

/// The stored form of a type: what an object reads as, and the object that a value becomes. As it
/// is, unless told otherwise.
template <class Value>
struct Form {
    static std::optional<Value> read(const PropertyList& object) {
        const auto* value = object.as<Value>();
        return value ? std::optional(*value) : std::nullopt;
    }
    static PropertyList of(const Value& value) { return value; }
};

template <>
std::optional<PropertyList> Form<PropertyList>::read(const PropertyList& object) {
    return object;
}

template <>
std::optional<bool> Form<bool>::read(const PropertyList& object) {
    return internal::asBool(object);
}

template <>
std::optional<std::int64_t> Form<std::int64_t>::read(const PropertyList& object) {
    return internal::asInteger(object);
}

template <>
std::optional<std::uint64_t> Form<std::uint64_t>::read(const PropertyList& object) {
    if (const auto* number = object.as<NSNumber>(); number && number->isUnsigned())
        return number->uint64Value();
    const std::int64_t integer = internal::asInteger(object);
    return integer >= 0 ? std::optional(static_cast<std::uint64_t>(integer)) : std::nullopt;
}

template <>
std::optional<float> Form<float>::read(const PropertyList& object) {
    return static_cast<float>(internal::asDouble(object));
}

template <>
std::optional<double> Form<double>::read(const PropertyList& object) {
    return internal::asDouble(object);
}

template <>
std::optional<std::string> Form<std::string>::read(const PropertyList& object) {
    return internal::asString(object);
}

using Strings = std::vector<std::string>;

template <>
std::optional<Strings> Form<Strings>::read(const PropertyList& object) {
    return internal::asStrings(object);
}

template <>
PropertyList Form<Strings>::of(const Strings& value) {
    return PropertyList::Array(value.begin(), value.end());
}

template <>
std::optional<URL> Form<URL>::read(const PropertyList& object) {
    return internal::asURL(object);
}

template <>
PropertyList Form<URL>::of(const URL& value) {
    return value.absoluteString();
}

using URLs = std::vector<URL>;

template <>
std::optional<URLs> Form<URLs>::read(const PropertyList& object) {
    URLs urls;
    const auto texts = internal::asStrings(object);
    for (const std::string& text : texts.value_or(Strings()))
        if (auto url = URL::make({.string = text}))
            urls.push_back(std::move(*url));
    return texts && urls.size() == texts->size() ? std::optional(std::move(urls)) : std::nullopt;
}

template <>
PropertyList Form<URLs>::of(const URLs& value) {
    PropertyList::Array texts;
    for (const URL& url : value)
        texts.emplace_back(url.absoluteString());
    return texts;
}

template <>
std::optional<BundleVersion> Form<BundleVersion>::read(const PropertyList& object) {
    const auto text = internal::asString(object);
    return text ? BundleVersion::make(*text) : std::nullopt;
}

template <>
PropertyList Form<BundleVersion>::of(const BundleVersion& value) {
    return value.rawValue();
}

template <>
std::optional<NSDateFormatterStyle> Form<NSDateFormatterStyle>::read(const PropertyList& object) {
    const auto* number = object.as<NSNumber>();
    return number ? std::optional(static_cast<NSDateFormatterStyle>(number->uint64Value()))
                  : std::nullopt;
}

template <>
PropertyList Form<NSDateFormatterStyle>::of(const NSDateFormatterStyle& value) {
    return static_cast<std::uint64_t>(value);
}

/// A shape from the numbers under the names; absent unless all of them are there.
template <class Shape, class... Name>
std::optional<Shape> shapeIn(const PropertyList& object, Name... names) {
    const auto* dictionary = object.as<PropertyList::Dictionary>();
    const auto number = [&](const char* name) -> const NSNumber* {
        const auto found = dictionary->find(name);
        return found == dictionary->end() ? nullptr : found->second.template as<NSNumber>();
    };
    if (!dictionary || (!number(names) || ...))
        return std::nullopt;
    return Shape(number(names)->doubleValue()...);
}

template <>
std::optional<CGPoint> Form<CGPoint>::read(const PropertyList& object) {
    return shapeIn<CGPoint>(object, "x", "y");
}

template <>
PropertyList Form<CGPoint>::of(const CGPoint& value) {
    return PropertyList::Dictionary{{"x", value.x}, {"y", value.y}};
}

template <>
std::optional<CGSize> Form<CGSize>::read(const PropertyList& object) {
    return shapeIn<CGSize>(object, "width", "height");
}

template <>
PropertyList Form<CGSize>::of(const CGSize& value) {
    return PropertyList::Dictionary{{"width", value.width}, {"height", value.height}};
}

template <>
std::optional<CGRect> Form<CGRect>::read(const PropertyList& object) {
    return shapeIn<CGRect>(object, "x", "y", "width", "height");
}

template <>
PropertyList Form<CGRect>::of(const CGRect& value) {
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
    return object ? Form<Value>::read(*object) : std::nullopt;
}

template <class Value>
void StoredUserDefaultsCoder<Value>::encode(const std::optional<Value>& value, NSUserDefaults& to,
                                            std::string_view key) const {
    to.setObject(value ? std::optional(Form<Value>::of(*value)) : std::nullopt, key);
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
