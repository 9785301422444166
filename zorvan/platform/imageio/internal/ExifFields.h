#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <vector>

namespace zorvan::imageio {

// What of a property dictionary's sections becomes entries of a directory, little-endian and by
// ascending tag: how, when and where a picture was taken. What describes the coded picture or its
// camera's own notes is left out, and so are values of another kind than their field has.

std::vector<TiffEntry> tiffTextEntries(const PropertyList::Dictionary& tiff);
std::vector<TiffEntry> exifEntries(const PropertyList::Dictionary& exif);
std::vector<TiffEntry> gpsEntries(const PropertyList::Dictionary& gps);

/// A text of the first directory; one that is too long is shortened.
TiffEntry textEntry(std::uint16_t tag, std::string_view text);

} // namespace zorvan::imageio
