#pragma once

#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/propertylist/NSBundle.h>

#include <cstdint>
#include <optional>
#include <string_view>

/// The icons that the desktop shows, found as files by the rules of the freedesktop icon themes.
namespace zorvan::desktop {

/// The icon with that name in the theme "hicolor", where applications install theirs, nearest to
/// the size in pixels, else the one without a theme. Absent when there is none.
///
/// Looks in "~/.icons", in "icons" below `$XDG_DATA_HOME` and each of `$XDG_DATA_DIRS`, and in
/// "/usr/share/pixmaps", for files ending in ".png", ".svg" and ".xpm".
std::optional<URL> iconNamed(std::string_view name, std::int64_t size);

/// The icon of an application bundle. In this order:
///
/// 1. the resource that "CFBundleIconFile" names, with or without its ".png" or ".svg";
/// 2. the key "Icon" of the desktop entry, "applications/NAME.desktop" below `$XDG_DATA_HOME` and
///    `$XDG_DATA_DIRS`, which is a path or goes through `iconNamed`;
/// 3. `iconNamed` of NAME;
///
/// where NAME is the bundle's identifier, its "CFBundleExecutable", or the name of its folder
/// without the extension, tried in turn. Absent when none of it leads to a file.
std::optional<URL> iconOfBundle(const NSBundle& bundle, std::int64_t size);

} // namespace zorvan::desktop
