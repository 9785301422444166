#include <zorvan/settings/NumberCoders.h>

#include <zorvan/settings/NSUserDefaults.h>

namespace zorvan {

std::optional<bool> BoolUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.hasObjectForKey(key) ? std::optional(from.boolForKey(key)) : std::nullopt;
}

void BoolUDC::encode(std::optional<bool> value, NSUserDefaults& to, std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::int64_t> IntUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.hasObjectForKey(key) ? std::optional(from.integerForKey(key)) : std::nullopt;
}

void IntUDC::encode(std::optional<std::int64_t> value, NSUserDefaults& to,
                    std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::uint64_t> UIntUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const std::optional<PropertyList> object = from.objectForKey(key);
    if (!object)
        return std::nullopt;
    if (const auto* number = object->as<NSNumber>(); number && number->isUnsigned())
        return number->uint64Value();
    const std::int64_t integer = from.integerForKey(key);
    return integer >= 0 ? std::optional(static_cast<std::uint64_t>(integer)) : std::nullopt;
}

void UIntUDC::encode(std::optional<std::uint64_t> value, NSUserDefaults& to,
                     std::string_view key) const {
    to.setObject(value, key);
}

std::optional<float> FloatUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.hasObjectForKey(key) ? std::optional(from.floatForKey(key)) : std::nullopt;
}

void FloatUDC::encode(std::optional<float> value, NSUserDefaults& to, std::string_view key) const {
    to.setObject(value, key);
}

std::optional<double> DoubleUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.hasObjectForKey(key) ? std::optional(from.doubleForKey(key)) : std::nullopt;
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
