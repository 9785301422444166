#include <zorvan/platform/bundles/internal/desktopFolders.h>

#include <algorithm>
#include <cstdlib>

namespace zorvan::desktop {

namespace {

namespace fs = std::filesystem;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<fs::path> folders(std::string own, const char* belowHome, std::string shared,
                              const char* usuallyShared) {
    if (own.empty() && !environment("HOME").empty())
        own = environment("HOME") + belowHome;
    if (shared.empty())
        shared = usuallyShared;
    std::vector<fs::path> paths;
    for (const std::string& folder : split(own + ':' + shared, ':'))
        if (folder.starts_with('/'))
            paths.emplace_back(folder);
    return paths;
}

} // namespace

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

std::vector<fs::path> dataFolders() {
    return folders(environment("XDG_DATA_HOME"), "/.local/share", environment("XDG_DATA_DIRS"),
                   "/usr/local/share:/usr/share");
}

std::vector<fs::path> configurationFolders() {
    return folders(environment("XDG_CONFIG_HOME"), "/.config", environment("XDG_CONFIG_DIRS"),
                   "/etc/xdg");
}

std::vector<fs::path> iconFolders() {
    std::vector<fs::path> paths;
    if (const std::string home = environment("HOME"); home.starts_with('/'))
        paths.push_back(fs::path(home) / ".icons");
    for (const fs::path& data : dataFolders())
        paths.push_back(data / "icons");
    paths.emplace_back("/usr/share/pixmaps");
    return paths;
}

} // namespace zorvan::desktop
