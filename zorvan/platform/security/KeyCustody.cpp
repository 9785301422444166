#include <zorvan/platform/security/internal/KeyCustody.h>

#include <zorvan/platform/security/internal/Keyring.h>

#include <exception>
#include <optional>

namespace zorvan::security {

namespace {

constexpr std::chrono::milliseconds patience{2000};
constexpr std::chrono::seconds pauseAfterRefusal{2};
constexpr std::chrono::seconds pauseAfterSilence{60}; // so that a hanging keyring costs little

} // namespace

const SealingKey& KeyCustody::forSealing() {
    if (!keyringKey_)
        consultKeyring(true);
    if (keyringKey_)
        return keys_.at(*keyringKey_);
    return keyOfFile();
}

/// The file may be put aside while the process runs, and a key that is nowhere on disk must not
/// seal anything.
const SealingKey& KeyCustody::keyOfFile() {
    const std::optional<KeyFileStamp> stamp = stampOfKeyFile(folder_);
    if (stamp && stamp == fileStamp_)
        return keys_.at(fileKey_);
    const SealingKey& key = remember(readOrMakeKeyFile(folder_));
    fileKey_ = key.identifier();
    fileStamp_ = stamp;
    return key;
}

const SealingKey* KeyCustody::find(const KeyIdentifier& identifier) {
    if (const SealingKey* key = known(identifier))
        return key;
    // A key file that is damaged or open to others does not stand in the way of the keyring.
    std::exception_ptr refusal;
    try {
        if (auto key = readKeyFile(folder_); key && key->identifier() == identifier)
            return &remember(std::move(*key));
    } catch (...) {
        refusal = std::current_exception();
    }
    consultKeyring(false);
    const SealingKey* const key = known(identifier);
    if (!key && refusal)
        std::rethrow_exception(refusal);
    return key;
}

const SealingKey* KeyCustody::known(const KeyIdentifier& identifier) const {
    const auto entry = keys_.find(identifier);
    return entry == keys_.end() ? nullptr : &entry->second;
}

const SealingKey& KeyCustody::remember(SealingKey key) {
    const KeyIdentifier identifier = key.identifier();
    return keys_.try_emplace(identifier, std::move(key)).first->second;
}

void KeyCustody::consultKeyring(bool mayCreate) {
    if (Clock::now() < nextConsultation_[mayCreate])
        return;
    KeyringAnswer answer = askKeyring(mayCreate, patience);
    nextConsultation_[mayCreate] = Clock::now() + pauseAfterRefusal;
    if (answer.isLate)
        nextConsultation_.fill(Clock::now() + pauseAfterSilence);
    for (SealingKey& key : answer.keys) {
        if (!keyringKey_) // the first of them, so that all processes choose the same
            keyringKey_ = key.identifier();
        remember(std::move(key));
    }
}

} // namespace zorvan::security
