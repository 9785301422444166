#include <zorvan/platform/bundles/DesktopIcon.h>

#include <zorvan/platform/bundles/internal/IconTheme.h>
#include <zorvan/platform/bundles/internal/KeyFile.h>
#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace zorvan::desktop {

namespace {

namespace fs = std::filesystem;

/// Where applications install their icons.
constexpr std::string_view sharedTheme = "hicolor";

/// How many names of themes are looked for, that of the chosen one among them.
constexpr std::size_t mostThemes = 64;

URL fileURL(const fs::path& path) { return URL({.fileURLWithPath = path.string()}); }

std::optional<URL> fileAt(std::string_view path) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return std::nullopt;
    return fileURL(path);
}

std::vector<std::string> namesOf(const NSBundle& bundle) {
    std::vector<std::string> names;
    for (const char* key : {"CFBundleIdentifier", "CFBundleExecutable"})
        if (const std::optional<std::string> text = string(bundle, key))
            names.push_back(*text);
    names.emplace_back(bundle.bundleURL().deletingPathExtension().lastPathComponent());
    // They become names of files.
    std::erase_if(names, [](const std::string& name) {
        return name.empty() || name.find('/') != std::string::npos;
    });
    return names;
}

std::optional<URL> iconInBundle(const NSBundle& bundle) {
    const std::string name = string(bundle, "CFBundleIconFile").value_or("");
    for (const char* extension : {"", "png", "svg"})
        if (const std::optional<URL> url = bundle.URLForResource(name, extension))
            if (std::optional<URL> file = fileAt(url->path()))
                return file;
    return std::nullopt;
}

std::optional<URL> iconOfDesktopEntry(const std::string& name, std::int64_t size) {
    for (const fs::path& data : internal::dataFolders()) {
        const std::optional<KeyFile> entry =
            KeyFile::read((data / "applications" / (name + ".desktop")).string());
        if (!entry)
            continue;
        const std::string* icon = entry->value("Desktop Entry", "Icon");
        if (!icon)
            return std::nullopt; // an entry of the user's hides the shared ones
        return icon->starts_with('/') ? fileAt(*icon) : iconNamed(*icon, size);
    }
    return std::nullopt;
}

/// Where icons and themes of icons are.
std::vector<fs::path> iconFolders() {
    std::vector<fs::path> places;
    if (const std::string home = NSHomeDirectory(); !home.empty())
        places.push_back(fs::path(home) / ".icons");
    for (const fs::path& data : internal::dataFolders())
        places.push_back(data / "icons");
    places.emplace_back("/usr/share/pixmaps");
    return places;
}

std::string userTheme() {
    constexpr std::array<const char*, 3> settings[] = {
        {"gtk-4.0/settings.ini", "Settings", "gtk-icon-theme-name"},
        {"gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name"},
        {"kdeglobals", "Icons", "Theme"}};
    for (const fs::path& folder : internal::configurationFolders())
        for (const auto& [file, group, key] : settings) {
            const std::optional<KeyFile> read = KeyFile::read((folder / file).string());
            const std::string* theme = read ? read->value(group, key) : nullptr;
            if (theme && !theme->empty())
                return *theme;
        }
    return std::string(sharedTheme);
}

/// Looks through a theme and those it names as its parents, depth first and into each only once.
class ThemeSearch {
public:
    ThemeSearch(std::string_view icon, IconSize size, const std::vector<fs::path>& places)
        : icon_(icon), size_(size), places_(places) {}

    std::optional<fs::path> find(const std::string& name) {
        const std::optional<IconTheme> theme =
            seen_.insert(name).second ? IconTheme::read(name, places_) : std::nullopt;
        if (!theme)
            return std::nullopt;
        if (std::optional<fs::path> file = theme->find(icon_, size_))
            return file;
        for (const std::string& parent : theme->parents()) {
            // The shared theme comes after all others, wherever it is named.
            if (parent == sharedTheme || seen_.size() >= mostThemes)
                continue;
            if (std::optional<fs::path> file = find(parent))
                return file;
        }
        return std::nullopt;
    }

private:
    std::string_view icon_;
    IconSize size_;
    const std::vector<fs::path>& places_;
    std::set<std::string> seen_;
};

} // namespace

std::optional<URL> iconNamed(std::string_view name, std::int64_t size, std::int64_t scale) {
    if (name.empty() || name.find('/') != std::string_view::npos)
        return std::nullopt;
    constexpr std::int64_t largest = 1 << 16;
    const std::vector<fs::path> places = iconFolders();
    ThemeSearch search(
        name,
        {std::clamp<std::int64_t>(size, 1, largest), std::clamp<std::int64_t>(scale, 1, largest)},
        places);
    for (const std::string& theme : {userTheme(), std::string(sharedTheme)})
        if (const std::optional<fs::path> file = search.find(theme))
            return fileURL(*file);
    for (const fs::path& place : places)
        if (const std::optional<fs::path> file = iconFile(place, name))
            return fileURL(*file);
    return std::nullopt;
}

std::optional<URL> iconOfBundle(const NSBundle& bundle, std::int64_t size) {
    if (std::optional<URL> icon = iconInBundle(bundle))
        return icon;
    const std::vector<std::string> names = namesOf(bundle);
    for (const std::string& name : names)
        if (std::optional<URL> icon = iconOfDesktopEntry(name, size))
            return icon;
    for (const std::string& name : names)
        if (std::optional<URL> icon = iconNamed(name, size))
            return icon;
    return std::nullopt;
}

} // namespace zorvan::desktop
