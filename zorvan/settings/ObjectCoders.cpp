#include <zorvan/settings/ObjectCoders.h>

#include <zorvan/settings/NSUserDefaults.h>

namespace zorvan {

std::optional<Date> DateUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.date(key);
}

void DateUDC::encode(const std::optional<Date>& value, NSUserDefaults& to,
                     std::string_view key) const {
    to.setObject(value, key);
}

std::optional<Data> DataUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.dataForKey(key);
}

void DataUDC::encode(const std::optional<Data>& value, NSUserDefaults& to,
                     std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::string> StringUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.stringForKey(key);
}

void StringUDC::encode(const std::optional<std::string>& value, NSUserDefaults& to,
                       std::string_view key) const {
    to.setObject(value, key);
}

std::optional<std::vector<std::string>> StringArrayUDC::decode(NSUserDefaults& from,
                                                               std::string_view key) const {
    return from.stringArrayForKey(key);
}

void StringArrayUDC::encode(const std::optional<std::vector<std::string>>& value,
                            NSUserDefaults& to, std::string_view key) const {
    to.setObject(value ? std::optional(PropertyList::Array(value->begin(), value->end()))
                       : std::nullopt,
                 key);
}

std::optional<PropertyList::Dictionary> DictUDC::decode(NSUserDefaults& from,
                                                        std::string_view key) const {
    return from.dictionaryForKey(key);
}

void DictUDC::encode(const std::optional<PropertyList::Dictionary>& value, NSUserDefaults& to,
                     std::string_view key) const {
    to.setObject(value, key);
}

std::optional<PropertyList::Array> NSArrayUDC::decode(NSUserDefaults& from,
                                                      std::string_view key) const {
    return from.arrayForKey(key);
}

void NSArrayUDC::encode(const std::optional<PropertyList::Array>& value, NSUserDefaults& to,
                        std::string_view key) const {
    to.setObject(value, key);
}

std::optional<NSNumber> NSNumberUDC::decode(NSUserDefaults& from, std::string_view key) const {
    const std::optional<PropertyList> object = from.objectForKey(key);
    const auto* number = object ? object->as<NSNumber>() : nullptr;
    return number ? std::optional(*number) : std::nullopt;
}

void NSNumberUDC::encode(const std::optional<NSNumber>& value, NSUserDefaults& to,
                         std::string_view key) const {
    to.setObject(value, key);
}

std::optional<PropertyList> NSObjectUDC::decode(NSUserDefaults& from, std::string_view key) const {
    return from.objectForKey(key);
}

void NSObjectUDC::encode(const std::optional<PropertyList>& value, NSUserDefaults& to,
                         std::string_view key) const {
    to.setObject(value, key);
}

} // namespace zorvan
