#pragma once

#include <zorvan/settings/StoredUserDefaultsCoder.h>
#include <zorvan/text/CMTime.h>
#include <zorvan/text/CMTimeRange.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvan {

/// Stored as a number: the time in seconds. Nothing stored reads as 0 seconds, never as absent; an
/// absent value is not written, and leaves what is stored.
class CMTimeUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = CMTime;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// Stored as a dictionary with "start" and "duration", each a dictionary with the integers "value",
/// "timescale", "flags" and "epoch", so that every range reads back equal. An absent value is not
/// written, and leaves what is stored.
class CMTimeRangeUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = CMTimeRange;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

/// How much of a date or time is shown.
enum class NSDateFormatterStyle : std::uint64_t {
    none = 0,
    short_ = 1,
    medium = 2,
    long_ = 3,
    full = 4
};

/// Stored as a number, which is taken as a style unchecked; absent when something else is stored.
class DateFormatterStyleUDC : public StoredUserDefaultsCoder<NSDateFormatterStyle> {};

} // namespace zorvan
