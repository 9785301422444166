#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace zorvan::coreservices {

/// A type of our own table. Lists are words parted by single spaces.
struct TypeDeclaration {
    std::string_view identifier;
    std::string_view conformsTo;
    std::string_view extensions;
    std::string_view mimeTypes;
    std::string_view description;
};

std::span<const TypeDeclaration> typeDeclarations() noexcept;

/// The position of a type in `typeDeclarations()`.
using TypeIndex = std::uint16_t;

/// Lookups take any case of ASCII letters.
std::optional<TypeIndex> typeWithIdentifier(std::string_view identifier);
std::optional<TypeIndex> typeWithExtension(std::string_view extension);
std::optional<TypeIndex> typeWithMimeType(std::string_view mimeType);

/// Whether a type of the table is `other` or conforms to it.
bool typeConforms(TypeIndex type, TypeIndex other);

} // namespace zorvan::coreservices
