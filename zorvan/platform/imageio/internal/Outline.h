#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <optional>
#include <string_view>

namespace zorvan::imageio {

/// What every property dictionary begins with.
struct Outline {
    PixelSize size;
    int depth = 8;
    std::string_view colorModel = "RGB";
    bool hasAlpha = false;
    /// The EXIF value; absent when the file says nothing.
    std::optional<int> orientation = {};
    struct Resolution {
        double x;
        double y;
    };
    /// Pixels per inch.
    std::optional<Resolution> dpi = {};
};

PropertyList::Dictionary propertiesOf(const Outline& outline);

/// The sub-dictionary of that name, made when there is none.
PropertyList::Dictionary& section(PropertyList::Dictionary& properties, std::string_view name);

/// The number under that key, when there is one.
std::optional<double> findNumber(const PropertyList::Dictionary& properties, std::string_view key);

/// Text from a file: up to the first zero, without blanks at its ends; bytes that are no UTF-8 are
/// taken for Latin-1.
std::string textFrom(std::string_view bytes);

} // namespace zorvan::imageio
