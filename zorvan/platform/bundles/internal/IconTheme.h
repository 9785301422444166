#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan::desktop {

/// An icon of `points` at so many pixels to a point.
struct IconSize {
    std::int64_t points;
    std::int64_t scale;
};

/// The file of an icon's name in a folder; absent when there is none.
std::optional<std::filesystem::path> iconFile(const std::filesystem::path& folder,
                                              std::string_view name);

/// A theme of icons, which may be spread over several places.
class IconTheme {
public:
    /// The theme of that name below the places. Absent when there is no folder of its own in any of
    /// them, or no index in these; but the theme that applications install into does without.
    static std::optional<IconTheme> read(const std::string& name,
                                         const std::vector<std::filesystem::path>& places);

    /// Themes that are looked into after this one.
    const std::vector<std::string>& parents() const noexcept { return parents_; }

    /// The icon in the first folder whose sizes the size is among, else in the one whose sizes are
    /// nearest to it.
    std::optional<std::filesystem::path> find(std::string_view icon, IconSize size) const;

private:
    /// The sizes of a folder's icons, in points, without the scale.
    struct SizeFolder {
        std::string name;
        std::int64_t smallest, largest, scale;
    };

    static SizeFolder described(const class KeyFile& index, const std::string& folder);
    void takeIndex(const class KeyFile& index);
    void takeUsualFolders();

    std::vector<std::filesystem::path> places_; // that have a folder of the theme, with that folder
    std::vector<SizeFolder> folders_;
    std::vector<std::string> parents_;
};

} // namespace zorvan::desktop
