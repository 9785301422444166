#pragma once

#include <zorvan/platform/foundation/RawRepresentable.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

/// Stored as the raw text; absent when the stored text is the raw value of none.
template <StringRawRepresentable E>
class EnumStringUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = E;

    std::optional<E> decode(NSUserDefaults& from, std::string_view key) const {
        const auto text = from.stringForKey(key);
        return text ? RawRepresentation<E>::make(std::string_view(*text)) : std::nullopt;
    }
    void encode(const std::optional<E>& value, NSUserDefaults& to, std::string_view key) const {
        to.setObject(
            value ? std::optional<PropertyList>(std::string(RawRepresentation<E>::rawValue(*value)))
                  : std::nullopt,
            key);
    }
    /// @}
};

/// Stored as the raw number. Nothing stored reads as the value whose raw value is 0, when there is
/// one; a number that is the raw value of none reads as absent.
template <IntegerRawRepresentable E>
class EnumIntUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = E;

    std::optional<E> decode(NSUserDefaults& from, std::string_view key) const {
        return RawRepresentation<E>::make(from.integerForKey(key));
    }
    void encode(const std::optional<E>& value, NSUserDefaults& to, std::string_view key) const {
        to.setObject(value ? std::optional<PropertyList>(
                                 static_cast<std::int64_t>(RawRepresentation<E>::rawValue(*value)))
                           : std::nullopt,
                     key);
    }
    /// @}
};

/// Stored as an array of the raw texts; texts that are the raw value of none are passed over.
template <StringRawRepresentable E>
class EnumStringArrayUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = std::vector<E>;

    std::optional<std::vector<E>> decode(NSUserDefaults& from, std::string_view key) const {
        const auto texts = from.stringArrayForKey(key);
        if (!texts)
            return std::nullopt;
        std::vector<E> values;
        for (const std::string& text : *texts)
            if (std::optional<E> value = RawRepresentation<E>::make(std::string_view(text)))
                values.push_back(std::move(*value));
        return values;
    }
    void encode(const std::optional<std::vector<E>>& value, NSUserDefaults& to,
                std::string_view key) const {
        if (!value) {
            to.removeObjectForKey(key);
            return;
        }
        PropertyList::Array texts;
        for (const E& item : *value)
            texts.emplace_back(std::string(RawRepresentation<E>::rawValue(item)));
        to.setObject(std::move(texts), key);
    }
    /// @}
};

} // namespace zorvan
