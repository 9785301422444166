#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <optional>
#include <vector>

namespace zorvan::imageio {

/// What of a property dictionary is written into files.
struct StoredProperties {
    /// 1 to 8; absent when the dictionary says nothing that makes sense.
    std::optional<int> orientation = {};
    /// Texts of the first directory of a TIFF or of an Exif block.
    std::vector<TiffEntry> texts = {};
    /// The directory of how and when the picture was taken, and that of where.
    std::vector<TiffEntry> exif = {};
    std::vector<TiffEntry> gps = {};
    std::optional<Outline::Resolution> dpi = {};

    bool saysNothing() const noexcept {
        return !orientation && texts.empty() && exif.empty() && gps.empty();
    }
};

StoredProperties storedProperties(const PropertyList::Dictionary& properties);

/// The properties as an Exif block; empty when they say nothing.
Data exifBlock(const StoredProperties& properties);

} // namespace zorvan::imageio
