#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>

namespace zorvan::imageio {

/// The properties of a page, which is the current directory. Another one may be current afterwards.
PropertyList::Dictionary tiffProperties(TiffFile& file, tdir_t page);

} // namespace zorvan::imageio
