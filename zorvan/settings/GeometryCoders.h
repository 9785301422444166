#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>

#include <optional>
#include <string_view>

namespace zorvan {

class NSUserDefaults;

/// Stored as a dictionary with the numbers "x" and "y". Absent when one is missing or no number;
/// other keys are left out of account.
class CGPointUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = CGPoint;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as a dictionary with the numbers "width" and "height", read likewise.
class CGSizeUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = CGSize;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as a dictionary with the numbers "x", "y", "width" and "height", read likewise. A
/// negative width or height is stored without its sign, beside the origin as it is.
class CGRectUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = CGRect;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

} // namespace zorvan
