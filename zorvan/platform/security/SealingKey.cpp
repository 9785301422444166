#include <zorvan/platform/security/internal/SealingKey.h>

#include <zorvan/platform/security/internal/Failure.h>

#include <new>
#include <sodium.h>
#include <span>

namespace zorvan::security {

namespace {

constexpr std::size_t nonceSize = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t tagSize = crypto_aead_xchacha20poly1305_ietf_ABYTES;
static_assert(SealingKey::size == crypto_aead_xchacha20poly1305_ietf_KEYBYTES);
static_assert(SealingKey::overhead == nonceSize + tagSize);

unsigned char* raw(std::byte* bytes) { return reinterpret_cast<unsigned char*>(bytes); }
const unsigned char* raw(const std::byte* bytes) {
    return reinterpret_cast<const unsigned char*>(bytes);
}

void startSodium() {
    static const bool isReady = sodium_init() >= 0;
    if (!isReady)
        throw Failure{errSecNotAvailable};
}

} // namespace

void SealingKey::Free::operator()(std::byte* bytes) const noexcept { sodium_free(bytes); }

SealingKey::SealingKey(const KeyIdentifier& identifier) : identifier_(identifier) {
    startSodium();
    bytes_.reset(static_cast<std::byte*>(sodium_malloc(size)));
    if (!bytes_)
        throw std::bad_alloc();
}

void SealingKey::protect() noexcept { sodium_mprotect_readonly(bytes_.get()); }

SealingKey SealingKey::random() {
    startSodium();
    KeyIdentifier identifier;
    randombytes_buf(identifier.data(), identifier.size());
    return filled(identifier, [](std::span<std::byte, size> bytes) {
        crypto_aead_xchacha20poly1305_ietf_keygen(raw(bytes.data()));
    });
}

Data SealingKey::seal(std::span<const std::byte> value,
                      std::span<const std::byte> associatedData) const {
    Data sealed(overhead + value.size());
    randombytes_buf(sealed.data(), nonceSize);
    crypto_aead_xchacha20poly1305_ietf_encrypt(raw(sealed.data()) + nonceSize, nullptr,
                                               raw(value.data()), value.size(),
                                               raw(associatedData.data()), associatedData.size(),
                                               nullptr, raw(sealed.data()), raw(bytes_.get()));
    return sealed;
}

std::optional<Secret> SealingKey::open(std::span<const std::byte> sealed,
                                       std::span<const std::byte> associatedData) const {
    if (sealed.size() < overhead)
        return std::nullopt;
    Secret value(sealed.size() - overhead);
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(
            raw(value.bytes().data()), nullptr, nullptr, raw(sealed.data()) + nonceSize,
            sealed.size() - nonceSize, raw(associatedData.data()), associatedData.size(),
            raw(sealed.data()), raw(bytes_.get())) != 0)
        return std::nullopt;
    return value;
}

} // namespace zorvan::security
