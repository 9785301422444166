#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/Required.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

/// A kind of data, by its uniform type identifier.
///
/// Types are equal when their identifiers are, the case of ASCII letters aside.
class UTIType {
public:
    /// An identifier, known or not.
    struct Identifier {
        Required<std::string> identifier;
    };
    /// An extension without its dot.
    struct FileExtension {
        Required<std::string_view> fileExtension;
    };
    /// A code of four characters, the first in the highest byte.
    struct Type {
        Required<std::uint32_t> type;
    };

    /// The type of that identifier, whether anything is known of it or not.
    explicit UTIType(Identifier argument) : identifier_(std::move(argument.identifier.value)) {}

    /// The type whose identifier is the four characters of a code; none is looked up.
    explicit UTIType(Type argument);

    /// The type of files with that extension, given without its dot and in any case. Absent when
    /// none is known.
    static std::optional<UTIType> make(FileExtension argument);

    /// As it was given, or as the tables have it.
    /// @{
    const std::string& identifier() const& noexcept { return identifier_; }
    std::string identifier() && noexcept { return std::move(identifier_); }
    /// @}

    /// The code whose four characters the identifier is; 0 when it is no such text.
    std::uint32_t osType() const noexcept;

    /// Whether this type is the other or a special case of it.
    /// @{
    [[nodiscard]] bool conforms(std::string_view identifier) const;
    [[nodiscard]] bool conforms(const UTIType& other) const;
    /// @}

    /// What a person would call it, in the language of the environment where it is known, else in
    /// English. Absent for an unknown type.
    std::optional<std::string> localizedDescription() const;

    /// "UTTypeIdentifier", "UTTypeDescription", "UTTypeConformsTo" and "UTTypeTagSpecification",
    /// each when there is something to say. Absent for an unknown type.
    std::optional<PropertyList::Dictionary> declaration() const;

    /// The type of that name, made on first use; see `UTCoreTypes.h` for its identifier.
    /// @{
    static const UTIType& item();
    static const UTIType& content();
    static const UTIType& compositeContent();
    static const UTIType& application();
    static const UTIType& message();
    static const UTIType& contact();
    static const UTIType& archive();
    static const UTIType& diskImage();
    static const UTIType& data();
    static const UTIType& directory();
    static const UTIType& resolvable();
    static const UTIType& symLink();
    static const UTIType& mountPoint();
    static const UTIType& aliasFile();
    static const UTIType& aliasRecord();
    static const UTIType& url();
    static const UTIType& fileURL();
    static const UTIType& text();
    static const UTIType& plainText();
    static const UTIType& utf8PlainText();
    static const UTIType& utf16PlainText();
    static const UTIType& rtf();
    static const UTIType& html();
    static const UTIType& xml();
    static const UTIType& sourceCode();
    static const UTIType& cSource();
    static const UTIType& objectiveCSource();
    static const UTIType& cppSource();
    static const UTIType& objCPPSource();
    static const UTIType& cHeader();
    static const UTIType& cppHeader();
    static const UTIType& javaSource();
    static const UTIType& pdf();
    static const UTIType& rtfd();
    static const UTIType& flatRTFD();
    static const UTIType& webArchive();
    static const UTIType& image();
    static const UTIType& jpeg();
    static const UTIType& jpeg2000();
    static const UTIType& tiff();
    static const UTIType& pict();
    static const UTIType& gif();
    static const UTIType& png();
    static const UTIType& quickTimeImage();
    static const UTIType& audiovisualContent();
    static const UTIType& movie();
    static const UTIType& video();
    static const UTIType& audio();
    static const UTIType& qtMovie();
    static const UTIType& mpeg();
    static const UTIType& mpeg4();
    static const UTIType& mP3();
    static const UTIType& mpeg4Audio();
    static const UTIType& folder();
    static const UTIType& volume();
    static const UTIType& package();
    static const UTIType& bundle();
    static const UTIType& framework();
    static const UTIType& applicationBundle();
    static const UTIType& applicationFile();
    static const UTIType& vCard();
    static const UTIType& inkText();
    /// @}

    /// Of the same identifier, the case of ASCII letters aside.
    friend bool operator==(const UTIType& a, const UTIType& b) noexcept;

private:
    std::string identifier_;
};

} // namespace zorvan

/// Agrees with equality: the case of ASCII letters does not count.
template <>
struct std::hash<zorvan::UTIType> {
    std::size_t operator()(const zorvan::UTIType& type) const noexcept;
};
