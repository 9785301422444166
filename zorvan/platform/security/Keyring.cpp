#include <zorvan/platform/security/internal/Keyring.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>

namespace zorvan::security {

KeyringAnswer askKeyring(bool mayCreate, std::chrono::milliseconds patience) {
    static const auto ask = ZORVAN_FUNCTION(ZORVAN_SECRET_SERVICE_KEYRING, zorvanAskSecretService);
    KeyringAnswer answer;
    if (ask)
        ask(mayCreate, patience, answer);
    return answer;
}

} // namespace zorvan::security
