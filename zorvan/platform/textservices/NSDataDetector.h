#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvan {

/// What a data detector looks for; a set of the constants.
struct NSTextCheckingType {
    std::uint64_t rawValue = 0; ///< A bit for each.

    /// Only `link` can be detected.
    /// @{
    static const NSTextCheckingType date, address, link, phoneNumber, transitInformation;
    /// @}

    /// Whether all of the other set is in this one.
    constexpr bool contains(NSTextCheckingType other) const noexcept {
        return (rawValue & other.rawValue) == other.rawValue;
    }
    /// What is in either set.
    friend constexpr NSTextCheckingType operator|(NSTextCheckingType a,
                                                  NSTextCheckingType b) noexcept {
        return {a.rawValue | b.rawValue};
    }
    friend constexpr bool operator==(NSTextCheckingType, NSTextCheckingType) = default;
};

inline constexpr NSTextCheckingType NSTextCheckingType::date{1u << 3};
inline constexpr NSTextCheckingType NSTextCheckingType::address{1u << 4};
inline constexpr NSTextCheckingType NSTextCheckingType::link{1u << 5};
inline constexpr NSTextCheckingType NSTextCheckingType::phoneNumber{1u << 11};
inline constexpr NSTextCheckingType NSTextCheckingType::transitInformation{1u << 12};

/// Something a data detector found.
struct NSTextCheckingResult {
    NSTextCheckingType resultType; ///< What it is.
    std::size_t offset;            ///< in bytes
    std::size_t length;            ///< in bytes
    /// The link as `URL::make` takes it: with its scheme, "http://" or "mailto:" where the text has
    /// none, and with escapes for what people write but URLs do not hold, as in "a[1].html".
    std::string url;

    friend bool operator==(const NSTextCheckingResult&, const NSTextCheckingResult&) = default;
};

/// Finds links in running text. A link is
/// - an address with a scheme: "https://example.com/a?b#c", "ssh://host", "mailto:joe@example.com";
/// - a web address without one, whose host begins with "www." or ends in a known top-level domain;
/// - an e-mail address.
///
/// Punctuation that ends the sentence, and a closing bracket that the link does not open, stay
/// outside. The time taken grows linearly with the text.
class NSDataDetector {
public:
    /// Absent when `types` holds none of the types that can be detected; that is `link` alone.
    static std::optional<NSDataDetector> make(NSTextCheckingType types);

    /// The first link; absent when there is none.
    [[nodiscard]] std::optional<NSTextCheckingResult> firstMatch(std::string_view text) const;

    /// Every link, first to last; none overlaps another.
    [[nodiscard]] std::vector<NSTextCheckingResult> matches(std::string_view text) const;

private:
    NSDataDetector() = default;
};

} // namespace zorvan
