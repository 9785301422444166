#include <zorvan/platform/settingsdatabase/SettingsFolder.h>

#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>

#include <cstdlib>
#include <utility>

namespace zorvan {

namespace {

constexpr std::size_t maximumNameSize = 200;

bool isPlain(char c) {
    return internal::isLetter(c) || internal::isDigit(c) || c == '.' || c == '_' || c == '-';
}

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
    const char* configuration = std::getenv("XDG_CONFIG_HOME");
    if (configuration && configuration[0] == '/')
        return std::string(configuration) + "/zorvan";
    const std::string home = NSHomeDirectory();
    return home.empty() ? std::nullopt : std::optional(home + "/.config/zorvan");
}

std::optional<std::string> settingsPath(std::string_view domain) {
    const std::string name = fileName(domain);
    const std::optional<std::string> folder = settingsFolder();
    if (name.empty() || name.size() > maximumNameSize || !folder)
        return std::nullopt;
    return *folder + '/' + name + ".settings";
}

} // namespace zorvan
