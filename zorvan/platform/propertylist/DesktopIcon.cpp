#include <zorvan/platform/propertylist/DesktopIcon.h>

#include <zorvan/platform/propertylist/internal/KeyFile.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace zorvan::desktop {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view theme = "hicolor";
constexpr std::string_view endings[] = {".png", ".svg", ".xpm"};

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

/// The folders for shared data, the user's own first. Relative ones do not count.
std::vector<fs::path> dataFolders() {
    std::string own = environment("XDG_DATA_HOME");
    if (own.empty() && !environment("HOME").empty())
        own = environment("HOME") + "/.local/share";
    std::string shared = environment("XDG_DATA_DIRS");
    if (shared.empty())
        shared = "/usr/local/share:/usr/share";
    std::vector<fs::path> folders;
    for (const std::string& folder : split(own + ':' + shared, ':'))
        if (folder.starts_with('/'))
            folders.emplace_back(folder);
    return folders;
}

std::vector<fs::path> iconFolders() {
    std::vector<fs::path> folders;
    if (const std::string home = environment("HOME"); home.starts_with('/'))
        folders.push_back(fs::path(home) / ".icons");
    for (const fs::path& data : dataFolders())
        folders.push_back(data / "icons");
    folders.emplace_back("/usr/share/pixmaps");
    return folders;
}

/// A folder of the theme, and how far the icons in it are from the wanted size: 0 when they fit.
struct SizeFolder {
    std::string name;
    std::int64_t distance;
};

std::int64_t distanceFrom(std::int64_t smallest, std::int64_t largest, std::int64_t size) {
    return size < smallest ? smallest - size : size > largest ? size - largest : 0;
}

SizeFolder described(const KeyFile& index, const std::string& folder, std::int64_t wanted) {
    const std::int64_t size = index.number(folder, "Size", 0);
    const std::int64_t scale = index.number(folder, "Scale", 1);
    const std::string* type = index.value(folder, "Type");
    std::int64_t smallest = size;
    std::int64_t largest = size;
    if (type && *type == "Scalable") {
        smallest = index.number(folder, "MinSize", size);
        largest = index.number(folder, "MaxSize", size);
    } else if (!type || *type != "Fixed") {
        const std::int64_t threshold = index.number(folder, "Threshold", 2);
        smallest = size - threshold;
        largest = size + threshold;
    }
    return {folder, distanceFrom(smallest * scale, largest * scale, wanted)};
}

/// The usual folders, for a theme whose index is not installed.
std::vector<SizeFolder> usualFolders(std::int64_t wanted) {
    std::vector<SizeFolder> folders;
    for (const int size : {16, 22, 24, 32, 48, 64, 96, 128, 192, 256, 512}) {
        const std::string side = std::to_string(size);
        folders.push_back({side + 'x' + side + "/apps", distanceFrom(size, size, wanted)});
    }
    folders.push_back({"scalable/apps", 0});
    return folders;
}

std::vector<SizeFolder> themeFolders(const std::vector<fs::path>& places, std::int64_t wanted) {
    for (const fs::path& place : places) {
        const std::optional<KeyFile> index =
            KeyFile::read((place / theme / "index.theme").string());
        if (!index)
            continue;
        std::vector<SizeFolder> folders;
        for (const char* list : {"Directories", "ScaledDirectories"})
            if (const std::string* names = index->value("Icon Theme", list))
                for (const std::string& folder : split(*names, ','))
                    folders.push_back(described(*index, folder, wanted));
        return folders;
    }
    return usualFolders(wanted);
}

std::optional<fs::path> fileIn(const fs::path& folder, std::string_view name) {
    for (const std::string_view ending : endings) {
        const fs::path file = folder / (std::string(name) + std::string(ending));
        std::error_code ignored;
        if (fs::is_regular_file(file, ignored))
            return file;
    }
    return std::nullopt;
}

URL fileURL(const fs::path& path) { return URL({.fileURLWithPath = path.string()}); }

std::optional<URL> fileAt(std::string_view path) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored))
        return std::nullopt;
    return fileURL(path);
}

std::vector<std::string> namesOf(const NSBundle& bundle) {
    std::vector<std::string> names;
    for (const char* key : {"CFBundleIdentifier", "CFBundleExecutable"}) {
        const PropertyList* value = bundle.objectForInfoDictionaryKey(key);
        if (const auto* text = value ? value->as<std::string>() : nullptr)
            names.push_back(*text);
    }
    names.emplace_back(bundle.bundleURL().deletingPathExtension().lastPathComponent());
    // They become names of files.
    std::erase_if(names, [](const std::string& name) {
        return name.empty() || name.find('/') != std::string::npos;
    });
    return names;
}

std::optional<URL> iconInBundle(const NSBundle& bundle) {
    const PropertyList* value = bundle.objectForInfoDictionaryKey("CFBundleIconFile");
    const auto* name = value ? value->as<std::string>() : nullptr;
    if (!name)
        return std::nullopt;
    for (const char* extension : {"", "png", "svg"})
        if (const std::optional<URL> url = bundle.URLForResource(*name, extension))
            if (std::optional<URL> file = fileAt(url->path()))
                return file;
    return std::nullopt;
}

std::optional<URL> iconOfDesktopEntry(const std::string& name, std::int64_t size) {
    for (const fs::path& data : dataFolders()) {
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

} // namespace

std::optional<URL> iconNamed(std::string_view name, std::int64_t size) {
    if (name.empty() || name.find('/') != std::string_view::npos)
        return std::nullopt;
    const std::vector<fs::path> places = iconFolders();
    constexpr std::int64_t largest = 1 << 16;
    std::vector<SizeFolder> folders =
        themeFolders(places, std::clamp<std::int64_t>(size, 1, largest));
    std::ranges::stable_sort(folders, {}, &SizeFolder::distance);
    for (const SizeFolder& folder : folders)
        for (const fs::path& place : places)
            if (const std::optional<fs::path> file = fileIn(place / theme / folder.name, name))
                return fileURL(*file);
    for (const fs::path& place : places)
        if (const std::optional<fs::path> file = fileIn(place, name))
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
