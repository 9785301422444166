#pragma once

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/foundation/NSNumber.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/text/BundleVersion.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

// Values of the information dictionary. Each is absent when there is nothing under the key, or
// something of another kind. `string(bundle, key)` comes with `NSBundle` itself.

/// The number under the key.
std::optional<NSNumber> number(const NSBundle& bundle, std::string_view key);
/// Whether the number under the key is not 0. A text is no truth value, not even "YES".
std::optional<bool> bool_(const NSBundle& bundle, std::string_view key);
/// The text under the key as a URL; absent when it is none.
std::optional<URL> url(const NSBundle& bundle, std::string_view key);

/// "CFBundleName".
std::optional<std::string> name(const NSBundle& bundle);
/// "CFBundleVersion".
std::optional<std::string> versionString(const NSBundle& bundle);
/// "CFBundleShortVersionString".
std::optional<std::string> shortVersionString(const NSBundle& bundle);
/// "CFBundleLongVersionString".
std::optional<std::string> longVersionString(const NSBundle& bundle);
/// The short version string as a version; `BundleVersion::zero` when there is none.
BundleVersion version(const NSBundle& bundle);

// Resources by name, each absent when the bundle has none of that name and kind.

/// The resource of that name with that extension, in the sub-folder if one is named.
/// @{
std::optional<URL> jsonURL(const NSBundle& bundle, std::string_view resource);
std::optional<URL> rtfURL(const NSBundle& bundle, std::string_view resource);
std::optional<URL> plistURL(const NSBundle& bundle, std::string_view resource,
                            std::optional<std::string_view> subdirectory = {});
std::optional<URL> htmlURL(const NSBundle& bundle, std::string_view resource,
                           std::optional<std::string_view> subdirectory = {});
/// @}

/// The file of the icon that the desktop shows for the bundle, nearest to the size in pixels;
/// absent when it shows none of its own. See `desktop::iconOfBundle` for where it is looked for.
std::optional<URL> applicationIconURL(const NSBundle& bundle, std::int64_t size = 128);

} // namespace zorvan
