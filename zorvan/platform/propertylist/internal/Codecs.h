#pragma once

#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <span>
#include <stdexcept>

namespace zorvan::propertylist {

/// Why a list cannot be read or written; never leaves the component.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

inline constexpr char binaryMagic[] = "bplist00";

PropertyList readBinary(std::span<const std::byte> bytes);
PropertyList readXML(std::span<const std::byte> bytes);
Data writeBinary(const PropertyList& list);
Data writeXML(const PropertyList& list);

} // namespace zorvan::propertylist
