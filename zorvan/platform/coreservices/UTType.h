#pragma once

#include <zorvan/platform/coreservices/UTCoreTypes.h>
#include <zorvan/platform/foundation/PropertyList.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

// Uniform type identifiers: names of kinds of data, each of which conforms to more general ones.
//
// The named types and the everyday file kinds come from a table of our own. Every other file
// extension is looked up in the shared MIME database of the desktop (`$XDG_DATA_HOME/mime`, then
// `mime` in each of `$XDG_DATA_DIRS`), which is read once, when it is first needed. Its type
// "image/x-tga" has the identifier "org.freedesktop.mime.image.x-tga" and conforms to
// `public.image`.
//
// Identifiers, extensions and MIME types are compared without regard to the case of ASCII letters.
// All functions may be called from several threads at once.

/// What a tag is: an extension without its dot, or a MIME type.
/// @{
inline constexpr NameLiteral kUTTagClassFilenameExtension = "public.filename-extension";
inline constexpr NameLiteral kUTTagClassMIMEType = "public.mime-type";
/// @}

/// The identifier of the type that has the tag: an extension without its dot, or a MIME type.
/// Absent when no type has it, when it is empty, or when the tag class is another.
std::optional<std::string> UTTypeCreatePreferredIdentifierForTag(std::string_view tagClass,
                                                                 std::string_view tag);

/// Whether `identifier` is `other` or a special case of it. An unknown identifier conforms to
/// itself alone.
[[nodiscard]] bool UTTypeConformsTo(std::string_view identifier, std::string_view other);

/// Whether they are the same, the case of ASCII letters aside; nothing is looked up.
[[nodiscard]] bool UTTypeEqual(std::string_view a, std::string_view b) noexcept;

/// What a person would call the type, in the language of the environment where the MIME database
/// has it, else in English. Absent for an unknown type.
std::optional<std::string> UTTypeCopyDescription(std::string_view identifier);

/// How the type is declared: "UTTypeIdentifier", "UTTypeDescription" (text), "UTTypeConformsTo"
/// (array of identifiers, the direct ones) and "UTTypeTagSpecification" (a dictionary from tag
/// class to the array of tags). An entry without content is left out. Absent for an unknown type.
std::optional<PropertyList::Dictionary> UTTypeCopyDeclaration(std::string_view identifier);

/// The text of a four-character code: its bytes, the highest first, as four characters. Bytes from
/// 0x80 stand for accented letters and signs ("é" is 0x8E); a byte 0 stays as it is.
std::string UTCreateStringForOSType(std::uint32_t code);

/// The code of a text of four characters; 0 when it has another number of them, or one that such
/// codes cannot hold.
[[nodiscard]] std::uint32_t UTGetOSTypeFromString(std::string_view text) noexcept;

/// Whether a directory whose name has this extension is a package: one that people see as a single
/// file. Never reads the MIME database, which knows no packages.
[[nodiscard]] bool isPackageExtension(std::string_view fileExtension);

} // namespace zorvan
