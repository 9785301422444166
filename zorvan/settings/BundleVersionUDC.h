#pragma once

#include <zorvan/text/BundleVersion.h>

#include <optional>
#include <string_view>

namespace zorvan {

class NSUserDefaults;

/// Stored as the raw text of the version, "2.1.0". Any text reads as a version, "2.1" as 2.1.0;
/// absent only when there is no text.
class BundleVersionUDC {
public:
    /// See `UserDefaultsCoder`.
    /// @{
    using CodableType = BundleVersion;
    std::optional<CodableType> decode(NSUserDefaults& from, std::string_view key) const;
    void encode(const std::optional<CodableType>& value, NSUserDefaults& to,
                std::string_view key) const;
    /// @}
};

} // namespace zorvan
