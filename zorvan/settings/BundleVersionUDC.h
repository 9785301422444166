#pragma once

#include <zorvan/settings/StoredUserDefaultsCoder.h>
#include <zorvan/text/BundleVersion.h>

#include <optional>
#include <string_view>

namespace zorvan {

/// Stored as the raw text of the version, "2.1.0". Any text reads as a version, "2.1" as 2.1.0;
/// absent only when there is no text.
class BundleVersionUDC : public StoredUserDefaultsCoder<BundleVersion> {};

} // namespace zorvan
