#pragma once

#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// Stored as a number: png 1, jpg 2, tiff 3, heic 4. Absent for any other number, and when
/// something else is stored.
class ImageExportFormatUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = ImageExportFormat;

    std::optional<ImageExportFormat> decode(NSUserDefaults& from, std::string_view key) const {
        const auto object = from.objectForKey(key);
        const auto* number = object ? object->as<NSNumber>() : nullptr;
        return number ? ImageExportFormat::make({.rawValue = number->int64Value()}) : std::nullopt;
    }
    void encode(std::optional<ImageExportFormat> value, NSUserDefaults& to,
                std::string_view key) const {
        to.setObject(value ? std::optional<PropertyList>(value->rawValue()) : std::nullopt, key);
    }
    /// @}
};

} // namespace zorvan
