#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace zorvan::internal {

/// What travels between processes for one notification.
struct WireNotification {
    std::string name;
    std::optional<std::string> object;
    std::optional<PropertyList::Dictionary> userInfo;

    friend bool operator==(const WireNotification&, const WireNotification&) = default;
};

// Bounds of a message, the same for those sent and those accepted.
constexpr std::size_t maxWireSize = 4 << 20; // bytes
constexpr std::size_t maxWireDepth = 64;     // of nested arrays and dictionaries
constexpr std::size_t maxWireValues = 100'000;

/// Throws `std::length_error` beyond the bounds, and `std::invalid_argument` for text that is not
/// UTF-8 or holds a NUL in the name.
Data encode(const WireNotification& notification);

/// Absent for anything that `encode` could not have made.
std::optional<WireNotification> decodeNotification(std::span<const std::byte> bytes);

} // namespace zorvan::internal
