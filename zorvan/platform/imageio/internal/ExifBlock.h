#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <optional>

namespace zorvan::imageio {

// An Exif block is a small TIFF file inside a picture; it begins with its byte order mark.

/// The orientation, 1 to 8, read by a walk of our own over the first directory: it is there even
/// when the rest of the block is broken.
std::optional<int> exifOrientation(Bytes block) noexcept;

/// Puts what the block says into the dictionaries "{TIFF}", "{Exif}" and "{GPS}".
void addExifProperties(Bytes block, PropertyList::Dictionary& properties);

/// The properties of a picture: its outline, what its Exif block says, also of the resolution where
/// the outline does not, and further dictionaries. The outline's orientation holds against Exif's.
PropertyList::Dictionary propertiesOf(Outline outline, Bytes exif,
                                      PropertyList::Dictionary sections = {});

/// The directories of an Exif block that stand apart in a TIFF, as a block; a place of 0 means
/// none.
struct ExifPlaces {
    std::uint64_t exif = 0;
    std::uint64_t gps = 0;
};
Data exifBlockFrom(ByteSource& source, const TiffForm& form, const ExifPlaces& places);

/// The small JPEG inside the block; empty when there is none.
Data exifThumbnail(Bytes block);

/// The resolution in pixels per inch that the dictionary "{TIFF}" states, if it does.
std::optional<Outline::Resolution> resolutionIn(const PropertyList::Dictionary& tiff);

/// The block with, and without, the "Exif\0\0" that some containers put before it.
Data withExifSignature(Bytes block);
Bytes withoutExifSignature(Bytes block) noexcept;

/// The block in a box that begins with how many bytes stand before it; empty when there is none.
Bytes exifInBox(Bytes box) noexcept;

} // namespace zorvan::imageio
