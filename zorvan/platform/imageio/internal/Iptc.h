#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>

namespace zorvan::imageio {

/// Puts the records of an IPTC block ("information interchange") into the dictionary "{IPTC}".
void addIptcProperties(Bytes block, PropertyList::Dictionary& properties);

/// The same from a Photoshop resource block, which holds the IPTC block among others.
void addPhotoshopProperties(Bytes block, PropertyList::Dictionary& properties);

} // namespace zorvan::imageio
