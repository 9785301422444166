#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

class NSUserDefaults;

/// Stored as a date; absent when something else is stored.
class DateUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = Date;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as bytes.
class DataUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = Data;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as a text. A stored number reads as its text.
class StringUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = std::string;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as an array of texts; absent when any element is something else.
class StringArrayUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = std::vector<std::string>;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as it is.
class DictUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = PropertyList::Dictionary;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as it is.
class NSArrayUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = PropertyList::Array;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as it is, truth values included.
class NSNumberUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = NSNumber;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Any value, stored as it is.
class NSObjectUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = PropertyList;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

} // namespace zorvan
