#include <zorvan/platform/security/internal/Keyring.h>

#include <zorvan/platform/foundation/internal/desktopFolders.h>
#include <zorvan/platform/foundation/internal/functionBeside.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan::security {

namespace {

/// Whether the session says where its bus is. A connection that had to find out by itself could
/// start one.
bool hasBus() {
    const char* const given = ::secure_getenv("DBUS_SESSION_BUS_ADDRESS");
    if (given && *given)
        return !std::string_view(given).starts_with("autolaunch:");
    const std::optional<std::string> runtime = internal::pathFromEnvironment("XDG_RUNTIME_DIR");
    struct stat status {};
    return runtime && ::stat((*runtime + "/bus").c_str(), &status) == 0 &&
           S_ISSOCK(status.st_mode) && status.st_uid == ::geteuid();
}

} // namespace

KeyringAnswer askKeyring(bool mayCreate, std::chrono::milliseconds patience) {
    if (!hasBus())
        return {};
    static const auto ask = ZORVAN_FUNCTION(ZORVAN_SECRET_SERVICE_KEYRING, zorvanAskSecretService);
    KeyringAnswer answer;
    if (ask)
        ask(mayCreate, patience, answer);
    return answer;
}

} // namespace zorvan::security
