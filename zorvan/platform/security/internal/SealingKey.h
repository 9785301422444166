#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/security/internal/Secret.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace zorvan::security {

/// Tells keys apart; no secret.
using KeyIdentifier = std::array<std::byte, 16>;

/// A key that seals values, in memory of its own between guard pages, which is kept out of swap
/// where the limits of the process allow it, and wiped at the end.
class SealingKey {
public:
    static constexpr std::size_t size = 32;
    /// What a sealed value has beyond the value: a nonce and a tag.
    static constexpr std::size_t overhead = 24 + 16;

    /// A new one from the system's generator.
    static SealingKey random();
    /// `fill` writes the `size` bytes.
    template <class Fill>
    static SealingKey filled(const KeyIdentifier& identifier, Fill fill) {
        SealingKey key(identifier);
        fill(std::span<std::byte, size>(key.bytes_.get(), size));
        key.protect();
        return key;
    }

    const KeyIdentifier& identifier() const noexcept { return identifier_; }
    std::span<const std::byte, size> bytes() const noexcept {
        return std::span<const std::byte, size>(bytes_.get(), size);
    }

    /// Encrypted with a new random nonce; opens only beside the same associated data.
    Data seal(std::span<const std::byte> value, std::span<const std::byte> associatedData) const;
    /// Absent when anything was changed.
    std::optional<Secret> open(std::span<const std::byte> sealed,
                               std::span<const std::byte> associatedData) const;

private:
    struct Free {
        void operator()(std::byte* bytes) const noexcept;
    };

    explicit SealingKey(const KeyIdentifier& identifier);
    void protect() noexcept;

    KeyIdentifier identifier_;
    std::unique_ptr<std::byte, Free> bytes_;
};

} // namespace zorvan::security
