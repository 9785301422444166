#pragma once

#include <zorvan/platform/security/internal/PrivateKeyFile.h>
#include <zorvan/platform/security/internal/SealingKey.h>

#include <array>
#include <chrono>
#include <map>
#include <optional>

namespace zorvan::security {

/// The keys that seal items. New values get the keyring's key where a session offers one, else the
/// one in the key file. Neither is ever given up for the other: each item says which key sealed it,
/// and every key that ever sealed something stays where it is.
class KeyCustody {
public:
    explicit KeyCustody(privatestore::PrivateFolder folder) : folder_(std::move(folder)) {}

    /// The key for new values; made when there is none. Throws `Failure`.
    const SealingKey& forSealing();

    /// The key of that name; null when it is not to be had now. Throws what `readKeyFile` does when
    /// that might have been the one.
    const SealingKey* find(const KeyIdentifier& identifier);

private:
    using Clock = std::chrono::steady_clock;

    const SealingKey* known(const KeyIdentifier& identifier) const;
    const SealingKey& remember(SealingKey key);
    const SealingKey& keyOfFile();
    /// Asks the keyring, unless it has just failed.
    void consultKeyring(bool mayCreate);

    privatestore::PrivateFolder folder_;
    std::map<KeyIdentifier, SealingKey> keys_;
    std::optional<KeyIdentifier> keyringKey_;
    KeyIdentifier fileKey_{};
    std::optional<KeyFileStamp> fileStamp_;               // of the file that the key was read from
    std::array<Clock::time_point, 2> nextConsultation_{}; // without and with leave to make a key
};

} // namespace zorvan::security
