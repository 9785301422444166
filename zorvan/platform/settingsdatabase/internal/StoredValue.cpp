#include <zorvan/platform/settingsdatabase/internal/StoredValue.h>

#include <zorvan/platform/foundation/internal/ValueBytes.h>

#include <limits>

namespace zorvan::internal {

namespace {

constexpr ValueBounds bounds{.size = maximumStoredSize,
                             .depth = maximumStoredDepth,
                             .values = std::numeric_limits<std::size_t>::max(),
                             .isUTF8 = false};

} // namespace

Data encodeStored(const PropertyList& value) {
    try {
        ValueWriter writer(bounds);
        writer.write(value);
        return writer.take();
    } catch (const ValueRefusal& refusal) {
        throw UnstorableValue(refusal == ValueRefusal::depth ? "the value is too deep"
                                                             : "the value is larger than 256 MiB");
    }
}

std::optional<PropertyList> decodeStored(std::span<const std::byte> bytes) {
    try {
        ValueReader reader(bytes, bounds);
        PropertyList value = reader.read();
        return reader.isAtEnd() ? std::optional(std::move(value)) : std::nullopt;
    } catch (const ValueDamage&) {
        return std::nullopt;
    }
}

} // namespace zorvan::internal
