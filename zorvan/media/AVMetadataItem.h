#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/NameLiteral.h>
#include <zorvan/platform/foundation/PropertyList.h>

#include <optional>
#include <string>

namespace zorvan {

/// Where a creation date stands: what the containers have in common, QuickTime metadata and
/// QuickTime user data.
/// @{
inline constexpr NameLiteral AVMetadataCommonIdentifierCreationDate = "common/creationDate";
inline constexpr NameLiteral AVMetadataIdentifierQuickTimeMetadataCreationDate =
    "mdta/com.apple.quicktime.creationdate";
inline constexpr NameLiteral AVMetadataIdentifierQuickTimeUserDataCreationDate = "udta/%A9day";
/// @}

/// Where a location stands: what the containers have in common, QuickTime metadata and QuickTime
/// user data.
/// @{
inline constexpr NameLiteral AVMetadataCommonIdentifierLocation = "common/location";
inline constexpr NameLiteral AVMetadataIdentifierQuickTimeMetadataLocationISO6709 =
    "mdta/com.apple.quicktime.location.ISO6709";
inline constexpr NameLiteral AVMetadataIdentifierQuickTimeUserDataLocationISO6709 = "udta/%A9xyz";
/// @}

/// Something that a media file says of itself.
struct AVMetadataItem {
    /// The place in the file that it comes from and its name there, such as "udta/%A9day".
    std::string identifier;
    PropertyList value; ///< A text, a date, a number or bytes.

    /// Absent when the value is no text.
    [[nodiscard]] std::optional<std::string> stringValue() const;

    /// A date, or a text that is one: "2024-05-31", with ":" for "-" if need be, a time of day
    /// after "T" or a space ("14:34", "14:34:56", "14:34:56.25"), then a zone ("Z", "+02", "+0200",
    /// "+02:00"). Without punctuation it is one too: "20240531T143456Z". A text without a zone is
    /// taken for UTC, one without a time of day for its midnight. Absent for anything else, among
    /// it years alone, days that no calendar has, and years that a `Date` does not hold (before
    /// 1678, after 2261).
    [[nodiscard]] std::optional<Date> dateValue() const;

    /// Absent when the value is no bytes. Text that is not UTF-8 comes as bytes.
    [[nodiscard]] std::optional<Data> dataValue() const;
};

} // namespace zorvan
