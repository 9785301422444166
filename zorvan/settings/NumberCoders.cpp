#include <zorvan/settings/NumberCoders.h>

#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/internal/conversions.h>

namespace zorvan {

std::optional<bool> BoolUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    return object ? std::optional(internal::asBool(*object)) : std::nullopt;
}

void BoolUDC::encode(std::optional<bool> value, NSUserDefaults& to, std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::int64_t> IntUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    return object ? std::optional(internal::asInteger(*object)) : std::nullopt;
}

void IntUDC::encode(std::optional<std::int64_t> value, NSUserDefaults& to,
                    std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::uint64_t> UIntUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    if (!object)
        return std::nullopt;
    if (const auto* number = object->as<NSNumber>(); number && number->isUnsigned())
        return number->uint64Value();
    const std::int64_t integer = internal::asInteger(*object);
    return integer >= 0 ? std::optional(static_cast<std::uint64_t>(integer)) : std::nullopt;
}

void UIntUDC::encode(std::optional<std::uint64_t> value, NSUserDefaults& to,
                     std::string_view key) const {
    to.setObject(value, key);
}

std::optional<float> FloatUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    return object ? std::optional(static_cast<float>(internal::asDouble(*object))) : std::nullopt;
}

void FloatUDC::encode(std::optional<float> value, NSUserDefaults& to, std::string_view key) const {
    to.setObject(value, key);
}

std::optional<double> DoubleUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const auto object = from.sharedObjectForKey(key);
    return object ? std::optional(internal::asDouble(*object)) : std::nullopt;
}

void DoubleUDC::encode(std::optional<double> value, NSUserDefaults& to,
                       std::string_view key) const {
    to.setObject(value, key);
}

std::optional<double> CGFloatUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return DoubleUDC().decode(from, key);
}

void CGFloatUDC::encode(std::optional<double> value, NSUserDefaults& to,
                        std::string_view key) const {
    DoubleUDC().encode(value, to, key);
}

} // namespace zorvan
