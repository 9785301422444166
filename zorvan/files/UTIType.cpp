#include <zorvan/files/UTIType.h>

#include <zorvan/platform/coreservices/UTType.h>
#include <zorvan/platform/foundation/internal/ascii.h>

namespace zorvan {

UTIType::UTIType(Type argument) : identifier_(UTCreateStringForOSType(argument.type)) {}

std::optional<UTIType> UTIType::make(FileExtension argument) {
    auto identifier =
        UTTypeCreatePreferredIdentifierForTag(kUTTagClassFilenameExtension, argument.fileExtension);
    if (!identifier)
        return std::nullopt;
    return UTIType({.identifier = std::move(*identifier)});
}

std::uint32_t UTIType::osType() const noexcept { return UTGetOSTypeFromString(identifier_); }

bool UTIType::conforms(std::string_view identifier) const {
    return UTTypeConformsTo(identifier_, identifier);
}

bool UTIType::conforms(const UTIType& other) const { return conforms(other.identifier_); }

std::optional<std::string> UTIType::localizedDescription() const {
    return UTTypeCopyDescription(identifier_);
}

std::optional<PropertyList::Dictionary> UTIType::declaration() const {
    return UTTypeCopyDeclaration(identifier_);
}

bool operator==(const UTIType& a, const UTIType& b) noexcept {
    return UTTypeEqual(a.identifier_, b.identifier_);
}

} // namespace zorvan

std::size_t std::hash<zorvan::UTIType>::operator()(const zorvan::UTIType& type) const noexcept {
    std::size_t hash = 14695981039346656037u; // FNV-1a
    for (const char c : type.identifier()) {
        const char lower = zorvan::internal::lowered(c);
        hash = (hash ^ static_cast<unsigned char>(lower)) * 1099511628211u;
    }
    return hash;
}
