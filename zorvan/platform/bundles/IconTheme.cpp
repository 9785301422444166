#include <zorvan/platform/bundles/internal/IconTheme.h>

#include <zorvan/platform/bundles/internal/KeyFile.h>
#include <zorvan/platform/foundation/internal/forEachPart.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace zorvan::desktop {

namespace {

namespace fs = std::filesystem;

constexpr const char* section = "Icon Theme";
constexpr std::size_t mostFolders = 2048;

/// Whether a name that a file gives stays below the folder it is looked for in.
bool staysInside(std::string_view name) {
    return !name.starts_with('/') && name.find("..") == std::string_view::npos;
}

std::vector<std::string> listed(const KeyFile& index, const char* key) {
    const std::string* names = index.value(section, key);
    std::vector<std::string> parts;
    internal::forEachPart(names ? *names : std::string_view(), ',', [&](std::string_view part) {
        part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
        if (staysInside(part))
            parts.emplace_back(part);
    });
    return parts;
}

} // namespace

std::optional<fs::path> iconFile(const fs::path& folder, std::string_view name) {
    for (const char* ending : {".png", ".svg", ".xpm"}) {
        const fs::path file = folder / (std::string(name) + ending);
        std::error_code ignored;
        if (fs::is_regular_file(file, ignored))
            return file;
    }
    return std::nullopt;
}

IconTheme::SizeFolder IconTheme::described(const KeyFile& index, const std::string& folder) {
    const std::int64_t size = index.number(folder, "Size", 0);
    const std::int64_t scale = std::max<std::int64_t>(index.number(folder, "Scale", 1), 1);
    const std::string* type = index.value(folder, "Type");
    if (type && *type == "Fixed")
        return {folder, size, size, scale};
    if (type && *type == "Scalable")
        return {folder, index.number(folder, "MinSize", size),
                index.number(folder, "MaxSize", size), scale};
    const std::int64_t threshold = index.number(folder, "Threshold", 2);
    return {folder, size - threshold, size + threshold, scale};
}

void IconTheme::takeIndex(const KeyFile& index) {
    for (const char* key : {"Directories", "ScaledDirectories"})
        for (const std::string& folder : listed(index, key))
            if (folders_.size() < mostFolders)
                folders_.push_back(described(index, folder));
    parents_ = listed(index, "Inherits");
}

void IconTheme::takeUsualFolders() {
    for (const std::int64_t size : {16, 22, 24, 32, 48, 64, 96, 128, 192, 256, 512}) {
        const std::string side = std::to_string(size);
        folders_.push_back({side + 'x' + side + "/apps", size, size, 1});
    }
    folders_.push_back({"scalable/apps", 1, 512, 1});
}

std::optional<IconTheme> IconTheme::read(const std::string& name,
                                         const std::vector<fs::path>& places) {
    // One folder has many paths, and a theme that inherits from itself under each would never end.
    if (name.empty() || name.find('/') != std::string::npos || !staysInside(name))
        return std::nullopt;
    IconTheme theme;
    for (const fs::path& place : places) {
        std::error_code ignored;
        if (fs::is_directory(place / name, ignored))
            theme.places_.push_back(place / name);
    }
    for (const fs::path& place : theme.places_)
        if (const std::optional<KeyFile> index = KeyFile::read((place / "index.theme").string())) {
            theme.takeIndex(*index);
            return theme;
        }
    if (theme.places_.empty() || name != "hicolor")
        return std::nullopt;
    theme.takeUsualFolders();
    return theme;
}

std::optional<fs::path> IconTheme::find(std::string_view icon, IconSize size) const {
    const std::int64_t wanted = size.points * size.scale;
    const auto distance = [&](const SizeFolder& folder) {
        const std::int64_t off =
            std::max({folder.smallest * folder.scale - wanted,
                      wanted - folder.largest * folder.scale, std::int64_t{0}});
        // Made for another scale, icons have lines of another thickness.
        return std::pair(off, folder.scale != size.scale);
    };
    std::vector<const SizeFolder*> order;
    for (const SizeFolder& folder : folders_)
        order.push_back(&folder);
    std::ranges::stable_sort(order, {}, [&](const SizeFolder* f) { return distance(*f); });
    for (const SizeFolder* folder : order)
        for (const fs::path& place : places_)
            if (std::optional<fs::path> file = iconFile(place / folder->name, icon))
                return file;
    return std::nullopt;
}

} // namespace zorvan::desktop
