#pragma once

#include <zorvan/platform/security/internal/SealingKey.h>

#include <chrono>
#include <vector>

namespace zorvan::security {

/// What the session's keyring said.
struct KeyringAnswer {
    std::vector<SealingKey> keys; // in order of their identifiers
    bool isLate = false;          // it did not answer in time
};

/// Asks the keyring of the session for the keys of the secure items, and has it keep a new one when
/// it has none and `mayCreate`. No keys when there is no bus, no keyring, or a locked one.
///
/// The conversation is held on a thread of its own, over a connection of its own; what it stumbles
/// over does not reach the caller, who waits no longer than `patience`. The user is never asked
/// anything.
KeyringAnswer askKeyring(bool mayCreate, std::chrono::milliseconds patience);

/// The same by the secret service of the desktop, through libsecret, which is loaded for it.
extern "C" void zorvanAskSecretService(bool mayCreate, std::chrono::milliseconds patience,
                                       KeyringAnswer& answer);

} // namespace zorvan::security
