#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// The version of a bundle, `major.minor.patch`, ordered by its components from the left. A
/// component may be any integer.
struct BundleVersion {
    /// A text for `make`.
    struct RawValue {
        Required<std::string_view> rawValue;
    };

    const std::int64_t major; ///< Any integer, negative ones too.
    const std::int64_t minor; ///< Any integer.
    const std::int64_t patch; ///< Any integer.

    static const BundleVersion zero;  ///< 0.0.0
    static const BundleVersion first; ///< 1.0.0

    // Braces, because <sys/sysmacros.h> makes macros of `major(` and `minor(`.
    /// The components as they are.
    constexpr BundleVersion(std::int64_t majorNumber, std::int64_t minorNumber,
                            std::int64_t patchNumber) noexcept
        : major{majorNumber}, minor{minorNumber}, patch{patchNumber} {}

    constexpr BundleVersion(const BundleVersion&) noexcept = default;
    /// A version is replaced as a whole.
    constexpr BundleVersion& operator=(const BundleVersion& other) noexcept {
        if (this != &other)
            std::construct_at(this, other);
        return *this;
    }

    /// Reads "2.5" as 2.5.0, whatever the text: never absent.
    ///
    /// Spaces (every kind of them) and tabs around the text are dropped, but not line breaks. A
    /// component is an optional sign and ASCII digits; one that is missing, is anything else, or
    /// does not fit 64 bits, is 0. What follows the third component is left out.
    /// @{
    static std::optional<BundleVersion> make(std::string_view text) noexcept;
    static std::optional<BundleVersion> make(RawValue argument) noexcept {
        return make(argument.rawValue.value);
    }
    /// @}

    /// "1.0.0": always three components in plain decimal.
    /// @{
    std::string rawValue() const;
    std::string description() const { return rawValue(); }
    /// @}

    /// Whether this is the version of the main bundle.
    bool isCurrent() const;

    /// Calls `into` with `major`, `minor` and `patch`, in that order.
    template <class Hasher>
    constexpr void hash(Hasher&& into) const {
        into(major);
        into(minor);
        into(patch);
    }

    friend constexpr auto operator<=>(const BundleVersion&,
                                      const BundleVersion&) noexcept = default;
};

inline constexpr BundleVersion BundleVersion::zero{0, 0, 0};
inline constexpr BundleVersion BundleVersion::first{1, 0, 0};

} // namespace zorvan

template <>
struct std::hash<zorvan::BundleVersion> {
    std::size_t operator()(const zorvan::BundleVersion& version) const noexcept {
        std::uint64_t state = 0;
        version.hash([&](std::int64_t component) {
            // A multiplication by the golden ratio in 64 bits spreads neighbouring versions.
            state = (state ^ static_cast<std::uint64_t>(component)) * 0x9E3779B97F4A7C15u;
            state ^= state >> 32;
        });
        return static_cast<std::size_t>(state);
    }
};
