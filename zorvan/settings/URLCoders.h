#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <optional>
#include <string_view>
#include <vector>

namespace zorvan {

class NSUserDefaults;

/// Stored as the text of the whole URL.
class URLUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = URL;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as an array of the texts of the whole URLs. Absent when any element is no text or no URL.
class URLArrayUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = std::vector<URL>;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

} // namespace zorvan
