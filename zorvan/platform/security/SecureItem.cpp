#include <zorvan/platform/security/internal/SecureItem.h>

#include <zorvan/platform/foundation/internal/byteNumbers.h>

#include <algorithm>
#include <span>
#include <string_view>

namespace zorvan::security {

namespace {

constexpr std::string_view itemMagic = "zorvan secure item 1";
constexpr std::string_view referenceMagic = "zsi1";
constexpr std::size_t referenceSize = referenceMagic.size() + sizeof(std::int64_t);

void append(Data& bytes, std::string_view text) {
    const auto raw = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), raw.begin(), raw.end());
}

void append(Data& bytes, std::uint64_t number) {
    zorvan::internal::appendNumber(bytes, number, 8, std::endian::big);
}

} // namespace

Data associatedData(const SecureItem& item) {
    Data bytes;
    bytes.reserve(512);
    append(bytes, itemMagic);
    bytes.insert(bytes.end(), item.key->begin(), item.key->end());
    for (const std::int64_t number : {item.reference, item.created, item.modified})
        append(bytes, static_cast<std::uint64_t>(number));
    bytes.push_back(std::byte{item.isSynchronizable});
    // Each with its length before it, so that no text can take over from its neighbour.
    for (const std::optional<std::string>& text : item.texts) {
        bytes.push_back(std::byte{text.has_value()});
        append(bytes, std::uint64_t{text ? text->size() : 0});
        append(bytes, text ? std::string_view(*text) : std::string_view());
    }
    return bytes;
}

Data persistentReference(std::int64_t reference) {
    Data bytes;
    append(bytes, referenceMagic);
    append(bytes, static_cast<std::uint64_t>(reference));
    return bytes;
}

std::optional<std::int64_t> referenceIn(const Data& persistentReference) {
    const auto magic = std::as_bytes(std::span(referenceMagic));
    if (persistentReference.size() != referenceSize ||
        !std::equal(magic.begin(), magic.end(), persistentReference.begin()))
        return std::nullopt;
    const auto number = std::span(persistentReference).subspan(magic.size());
    return static_cast<std::int64_t>(zorvan::internal::numberOf(number, std::endian::big));
}

} // namespace zorvan::security
