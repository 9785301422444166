#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>

namespace zorvan::imageio {

// Of a page, which is the current directory.

PropertyList::Dictionary tiffProperties(const TiffFile& file);

/// The EXIF value, 1 to 8.
std::optional<int> tiffOrientation(const TiffFile& file);

} // namespace zorvan::imageio
