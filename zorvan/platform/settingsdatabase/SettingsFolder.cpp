#include <zorvan/platform/settingsdatabase/SettingsFolder.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/desktopFolders.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>

#include <utility>

namespace zorvan {

namespace {

constexpr std::size_t maximumNameSize = 200;

bool isPlain(char c) { return internal::isAlphanumeric(c) || c == '.' || c == '_' || c == '-'; }

/// Escapes a leading dot too, which would hide the file.
std::string fileName(std::string_view domain) {
    bool isFirst = true;
    return internal::percentEscaped(domain, [&](char c) {
        const bool leads = std::exchange(isFirst, false);
        return isPlain(c) && !(leads && c == '.');
    });
}

} // namespace

std::optional<std::string> settingsFolder() {
    const std::optional<std::string> folder = internal::configurationFolder();
    return folder ? std::optional(*folder + "/zorvan") : std::nullopt;
}

std::optional<std::string> settingsPath(std::string_view domain) {
    const std::string name = fileName(domain);
    const std::optional<std::string> folder = settingsFolder();
    if (name.empty() || name.size() > maximumNameSize || !folder)
        return std::nullopt;
    return *folder + '/' + name + ".settings";
}

} // namespace zorvan
