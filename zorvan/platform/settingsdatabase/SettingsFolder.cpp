#include <zorvan/platform/settingsdatabase/SettingsFolder.h>

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace zorvan {

namespace {

constexpr std::size_t maximumNameSize = 200;

std::optional<std::string> homeFolder() {
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/')
        return home;
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> buffer(1 << 14);
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_dir || found->pw_dir[0] != '/')
        return std::nullopt;
    return found->pw_dir;
}

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

std::string fileName(std::string_view domain) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string name;
    for (const char c : domain) {
        if (isPlain(c) && !(c == '.' && name.empty())) {
            name += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        name += '%';
        name += digits[byte >> 4];
        name += digits[byte & 15];
    }
    return name;
}

} // namespace

std::optional<std::string> settingsFolder() {
    const char* configuration = std::getenv("XDG_CONFIG_HOME");
    if (configuration && configuration[0] == '/')
        return std::string(configuration) + "/zorvan";
    const std::optional<std::string> home = homeFolder();
    return home ? std::optional(*home + "/.config/zorvan") : std::nullopt;
}

std::optional<std::string> settingsPath(std::string_view domain) {
    const std::string name = fileName(domain);
    const std::optional<std::string> folder = settingsFolder();
    if (name.empty() || name.size() > maximumNameSize || !folder)
        return std::nullopt;
    return *folder + '/' + name + ".settings";
}

} // namespace zorvan
