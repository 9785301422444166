#pragma once

#include <zorvan/platform/coreservices/UTCoreTypes.h>
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
    static const UTIType& item() { return named<kUTTypeItem>(); }
    static const UTIType& content() { return named<kUTTypeContent>(); }
    static const UTIType& compositeContent() { return named<kUTTypeCompositeContent>(); }
    static const UTIType& application() { return named<kUTTypeApplication>(); }
    static const UTIType& message() { return named<kUTTypeMessage>(); }
    static const UTIType& contact() { return named<kUTTypeContact>(); }
    static const UTIType& archive() { return named<kUTTypeArchive>(); }
    static const UTIType& diskImage() { return named<kUTTypeDiskImage>(); }
    static const UTIType& data() { return named<kUTTypeData>(); }
    static const UTIType& directory() { return named<kUTTypeDirectory>(); }
    static const UTIType& resolvable() { return named<kUTTypeResolvable>(); }
    static const UTIType& symLink() { return named<kUTTypeSymLink>(); }
    static const UTIType& mountPoint() { return named<kUTTypeMountPoint>(); }
    static const UTIType& aliasFile() { return named<kUTTypeAliasFile>(); }
    static const UTIType& aliasRecord() { return named<kUTTypeAliasRecord>(); }
    static const UTIType& url() { return named<kUTTypeURL>(); }
    static const UTIType& fileURL() { return named<kUTTypeFileURL>(); }
    static const UTIType& text() { return named<kUTTypeText>(); }
    static const UTIType& plainText() { return named<kUTTypePlainText>(); }
    static const UTIType& utf8PlainText() { return named<kUTTypeUTF8PlainText>(); }
    static const UTIType& utf16PlainText() { return named<kUTTypeUTF16PlainText>(); }
    static const UTIType& rtf() { return named<kUTTypeRTF>(); }
    static const UTIType& html() { return named<kUTTypeHTML>(); }
    static const UTIType& xml() { return named<kUTTypeXML>(); }
    static const UTIType& sourceCode() { return named<kUTTypeSourceCode>(); }
    static const UTIType& cSource() { return named<kUTTypeCSource>(); }
    static const UTIType& objectiveCSource() { return named<kUTTypeObjectiveCSource>(); }
    static const UTIType& cppSource() { return named<kUTTypeCPlusPlusSource>(); }
    static const UTIType& objCPPSource() { return named<kUTTypeObjectiveCPlusPlusSource>(); }
    static const UTIType& cHeader() { return named<kUTTypeCHeader>(); }
    static const UTIType& cppHeader() { return named<kUTTypeCPlusPlusHeader>(); }
    static const UTIType& javaSource() { return named<kUTTypeJavaSource>(); }
    static const UTIType& pdf() { return named<kUTTypePDF>(); }
    static const UTIType& rtfd() { return named<kUTTypeRTFD>(); }
    static const UTIType& flatRTFD() { return named<kUTTypeFlatRTFD>(); }
    static const UTIType& webArchive() { return named<kUTTypeWebArchive>(); }
    static const UTIType& image() { return named<kUTTypeImage>(); }
    static const UTIType& jpeg() { return named<kUTTypeJPEG>(); }
    static const UTIType& jpeg2000() { return named<kUTTypeJPEG2000>(); }
    static const UTIType& tiff() { return named<kUTTypeTIFF>(); }
    static const UTIType& pict() { return named<kUTTypePICT>(); }
    static const UTIType& gif() { return named<kUTTypeGIF>(); }
    static const UTIType& png() { return named<kUTTypePNG>(); }
    static const UTIType& quickTimeImage() { return named<kUTTypeQuickTimeImage>(); }
    static const UTIType& audiovisualContent() { return named<kUTTypeAudiovisualContent>(); }
    static const UTIType& movie() { return named<kUTTypeMovie>(); }
    static const UTIType& video() { return named<kUTTypeVideo>(); }
    static const UTIType& audio() { return named<kUTTypeAudio>(); }
    static const UTIType& qtMovie() { return named<kUTTypeQuickTimeMovie>(); }
    static const UTIType& mpeg() { return named<kUTTypeMPEG>(); }
    static const UTIType& mpeg4() { return named<kUTTypeMPEG4>(); }
    static const UTIType& mP3() { return named<kUTTypeMP3>(); }
    static const UTIType& mpeg4Audio() { return named<kUTTypeMPEG4Audio>(); }
    static const UTIType& folder() { return named<kUTTypeFolder>(); }
    static const UTIType& volume() { return named<kUTTypeVolume>(); }
    static const UTIType& package() { return named<kUTTypePackage>(); }
    static const UTIType& bundle() { return named<kUTTypeBundle>(); }
    static const UTIType& framework() { return named<kUTTypeFramework>(); }
    static const UTIType& applicationBundle() { return named<kUTTypeApplicationBundle>(); }
    static const UTIType& applicationFile() { return named<kUTTypeApplicationFile>(); }
    static const UTIType& vCard() { return named<kUTTypeVCard>(); }
    static const UTIType& inkText() { return named<kUTTypeInkText>(); }
    /// @}

    /// Of the same identifier, the case of ASCII letters aside.
    friend bool operator==(const UTIType& a, const UTIType& b) noexcept;

private:
    template <const NameLiteral& identifier>
    static const UTIType& named() {
        static const UTIType type({.identifier = identifier});
        return type;
    }

    std::string identifier_;
};

} // namespace zorvan

/// Agrees with equality: the case of ASCII letters does not count.
template <>
struct std::hash<zorvan::UTIType> {
    std::size_t operator()(const zorvan::UTIType& type) const noexcept;
};
