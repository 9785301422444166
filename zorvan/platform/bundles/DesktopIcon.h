#pragma once

#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <optional>
#include <string_view>

/// The icons that the desktop shows, found as files by the rules of the freedesktop icon themes.
namespace zorvan::desktop {

/// The icon with that name, for a size in points and so many pixels to a point: in the theme that
/// the user has chosen, in those that it inherits from, in "hicolor", where applications install
/// theirs, else without a theme. In a theme, of the first folder that has icons of the size, else
/// of the one that has the nearest. Absent when there is none. Of the chosen theme
/// and those that it leads to, each with its own before the next, the first 64 names are looked
/// for, and of the folders of a theme the first 2,048.
///
/// The choice is "gtk-icon-theme-name" of "gtk-4.0/settings.ini" or "gtk-3.0/settings.ini", or
/// "Theme" of "kdeglobals", below `$XDG_CONFIG_HOME` and each of `$XDG_CONFIG_DIRS`. Themes are
/// looked for in "~/.icons", in "icons" below `$XDG_DATA_HOME` and each of `$XDG_DATA_DIRS`, and in
/// "/usr/share/pixmaps"; icons are files ending in ".png", ".svg" and ".xpm".
std::optional<URL> iconNamed(std::string_view name, std::int64_t size, std::int64_t scale = 1);

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
