#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>

namespace zorvan::propertylist {

/// Why a list cannot be read or written; never leaves the component.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How much text a binary list may unfold to, beyond this much for each of its bytes.
inline constexpr std::size_t textPerByte = 16;
inline constexpr std::size_t minimumTextBudget = std::size_t{1} << 20;

inline constexpr char binaryMagic[] = "bplist00";

/// Whether a list may hold object identifiers, which only keyed archives have. Where they are
/// admitted, a dictionary with `identifierKey` alone, which maps to an integer that is not
/// negative, stands for one.
enum class Identifiers { refused, admitted };
inline constexpr const char* identifierKey = "CF$UID";
/// The object identifier that a value stands for; absent when it stands for itself.
std::optional<std::uint64_t> identifierIn(const PropertyList& value);

PropertyList readBinary(std::span<const std::byte> bytes,
                        Identifiers identifiers = Identifiers::refused);
PropertyList readXML(std::span<const std::byte> bytes);
Data writeBinary(const PropertyList& list, Identifiers identifiers = Identifiers::refused);
Data writeXML(const PropertyList& list);

} // namespace zorvan::propertylist
