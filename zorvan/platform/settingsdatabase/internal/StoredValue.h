#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>

namespace zorvan::internal {

/// The value can have no stored form; the text says why.
struct UnstorableValue : std::runtime_error {
    using runtime_error::runtime_error;
};

/// How deep arrays and dictionaries may stand within each other.
inline constexpr std::size_t maximumStoredDepth = 512;

/// How many bytes the stored form of one value may have: 256 MiB.
inline constexpr std::size_t maximumStoredSize = std::size_t{256} << 20;

/// The bytes that stand for a value (`ValueWriter`). Throws `UnstorableValue` when it is too deep
/// or too large.
Data encodeStored(const PropertyList& value);

/// The value; absent unless the bytes are one value and nothing else. Safe on any bytes.
std::optional<PropertyList> decodeStored(std::span<const std::byte> bytes);

} // namespace zorvan::internal
