#pragma once

#include <zorvan/platform/foundation/Data.h>
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

/// The bytes that stand for a value, exactly: every number, date and byte of a text comes back as
/// it was. A letter says the kind, then:
///
///     T F     truth values
///     u       integer above the largest signed one: 8 bytes, lowest first
///     i       any other integer: the same         d   date: nanoseconds since 1970, the same
///     r       real: its 8 bytes, lowest first
///     s b     text, data: length, bytes
///     a       array: count, values                o   dictionary: count, then length, key, value
///
/// Lengths and counts are in groups of seven bits, lowest first, the top bit set on all but the
/// last.
///
/// Throws `UnstorableValue` when the value is too deep or too large.
Data encodeStored(const PropertyList& value);

/// The value; absent unless the bytes are one value and nothing else. Safe on any bytes.
std::optional<PropertyList> decodeStored(std::span<const std::byte> bytes);

} // namespace zorvan::internal
