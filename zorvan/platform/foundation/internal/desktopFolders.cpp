#include <zorvan/platform/foundation/internal/desktopFolders.h>

#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/forEachPart.h>

#include <cstdlib>

namespace zorvan::internal {

namespace {

std::optional<std::string> ownFolder(const char* variable, const char* belowHome) {
    if (std::optional<std::string> named = pathFromEnvironment(variable))
        return named;
    const std::string home = NSHomeDirectory();
    return home.empty() ? std::nullopt : std::optional(home + belowHome);
}

std::vector<std::filesystem::path> withShared(std::optional<std::string> own, const char* variable,
                                              const char* usual) {
    std::vector<std::filesystem::path> folders;
    if (own)
        folders.emplace_back(std::move(*own));
    const char* shared = ::secure_getenv(variable);
    forEachPart(shared && *shared ? shared : usual, ':', [&](std::string_view folder) {
        if (folder.starts_with('/'))
            folders.emplace_back(folder);
    });
    return folders;
}

} // namespace

std::optional<std::string> pathFromEnvironment(const char* name) {
    const char* value = ::secure_getenv(name);
    return value && value[0] == '/' ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> dataFolder() { return ownFolder("XDG_DATA_HOME", "/.local/share"); }

std::optional<std::string> configurationFolder() {
    return ownFolder("XDG_CONFIG_HOME", "/.config");
}

std::vector<std::filesystem::path> dataFolders() {
    return withShared(dataFolder(), "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

std::vector<std::filesystem::path> configurationFolders() {
    return withShared(configurationFolder(), "XDG_CONFIG_DIRS", "/etc/xdg");
}

} // namespace zorvan::internal
