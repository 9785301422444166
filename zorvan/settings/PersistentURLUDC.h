#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <optional>
#include <string_view>

namespace zorvan {

class NSUserDefaults;

/// The URL of a file, stored as a bookmark, which finds the file again after it was renamed or
/// moved within its volume; see `resolveBookmark`. Keys hold it by reference.
class PersistentURLUDC {
public:
    using CodableType = URL; ///< See `UserDefaultsCoder`.

    PersistentURLUDC() = default;
    PersistentURLUDC(const PersistentURLUDC&) = delete;
    PersistentURLUDC& operator=(const PersistentURLUDC&) = delete;
    /// Applications may derive coders of their own.
    virtual ~PersistentURLUDC() = default;

    /// When the file cannot be found, says why in one line on standard output, and is absent; the
    /// bookmark stays. When the bookmark is stale, a fresh one takes its place, without a
    /// notification.
    virtual std::optional<URL> decode(NSUserDefaults& from, std::string_view key) const;

    /// A URL that cannot be bookmarked, such as that of no file, is not written: what was stored
    /// stays.
    virtual void encode(const std::optional<URL>& value, NSUserDefaults& to,
                        std::string_view key) const;
};

} // namespace zorvan
