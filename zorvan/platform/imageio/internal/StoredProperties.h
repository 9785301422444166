#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/Outline.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zorvan::imageio {

/// What of a property dictionary is written into files.
struct StoredProperties {
    struct Text {
        std::uint16_t tag;
        std::string value;
    };
    /// 1 to 8; absent when the dictionary says nothing that makes sense.
    std::optional<int> orientation = {};
    /// Texts of the first directory of a TIFF or of an Exif block, by ascending tag.
    std::vector<Text> texts = {};
    /// Texts of the Exif directory, by ascending tag.
    std::vector<Text> exifTexts = {};
    std::optional<Outline::Resolution> dpi = {};

    bool saysNothing() const noexcept { return !orientation && texts.empty() && exifTexts.empty(); }
};

StoredProperties storedProperties(const PropertyList::Dictionary& properties);

/// The properties as an Exif block; empty when they say nothing.
Data exifBlock(const StoredProperties& properties);

} // namespace zorvan::imageio
