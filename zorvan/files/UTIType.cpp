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

#define ZORVAN_TYPE_CONSTANT(name, constant)                                                       \
    const UTIType& UTIType::name() {                                                               \
        static const UTIType type({.identifier = constant});                                       \
        return type;                                                                               \
    }

ZORVAN_TYPE_CONSTANT(item, kUTTypeItem)
ZORVAN_TYPE_CONSTANT(content, kUTTypeContent)
ZORVAN_TYPE_CONSTANT(compositeContent, kUTTypeCompositeContent)
ZORVAN_TYPE_CONSTANT(application, kUTTypeApplication)
ZORVAN_TYPE_CONSTANT(message, kUTTypeMessage)
ZORVAN_TYPE_CONSTANT(contact, kUTTypeContact)
ZORVAN_TYPE_CONSTANT(archive, kUTTypeArchive)
ZORVAN_TYPE_CONSTANT(diskImage, kUTTypeDiskImage)
ZORVAN_TYPE_CONSTANT(data, kUTTypeData)
ZORVAN_TYPE_CONSTANT(directory, kUTTypeDirectory)
ZORVAN_TYPE_CONSTANT(resolvable, kUTTypeResolvable)
ZORVAN_TYPE_CONSTANT(symLink, kUTTypeSymLink)
ZORVAN_TYPE_CONSTANT(mountPoint, kUTTypeMountPoint)
ZORVAN_TYPE_CONSTANT(aliasFile, kUTTypeAliasFile)
ZORVAN_TYPE_CONSTANT(aliasRecord, kUTTypeAliasRecord)
ZORVAN_TYPE_CONSTANT(url, kUTTypeURL)
ZORVAN_TYPE_CONSTANT(fileURL, kUTTypeFileURL)
ZORVAN_TYPE_CONSTANT(text, kUTTypeText)
ZORVAN_TYPE_CONSTANT(plainText, kUTTypePlainText)
ZORVAN_TYPE_CONSTANT(utf8PlainText, kUTTypeUTF8PlainText)
ZORVAN_TYPE_CONSTANT(utf16PlainText, kUTTypeUTF16PlainText)
ZORVAN_TYPE_CONSTANT(rtf, kUTTypeRTF)
ZORVAN_TYPE_CONSTANT(html, kUTTypeHTML)
ZORVAN_TYPE_CONSTANT(xml, kUTTypeXML)
ZORVAN_TYPE_CONSTANT(sourceCode, kUTTypeSourceCode)
ZORVAN_TYPE_CONSTANT(cSource, kUTTypeCSource)
ZORVAN_TYPE_CONSTANT(objectiveCSource, kUTTypeObjectiveCSource)
ZORVAN_TYPE_CONSTANT(cppSource, kUTTypeCPlusPlusSource)
ZORVAN_TYPE_CONSTANT(objCPPSource, kUTTypeObjectiveCPlusPlusSource)
ZORVAN_TYPE_CONSTANT(cHeader, kUTTypeCHeader)
ZORVAN_TYPE_CONSTANT(cppHeader, kUTTypeCPlusPlusHeader)
ZORVAN_TYPE_CONSTANT(javaSource, kUTTypeJavaSource)
ZORVAN_TYPE_CONSTANT(pdf, kUTTypePDF)
ZORVAN_TYPE_CONSTANT(rtfd, kUTTypeRTFD)
ZORVAN_TYPE_CONSTANT(flatRTFD, kUTTypeFlatRTFD)
ZORVAN_TYPE_CONSTANT(webArchive, kUTTypeWebArchive)
ZORVAN_TYPE_CONSTANT(image, kUTTypeImage)
ZORVAN_TYPE_CONSTANT(jpeg, kUTTypeJPEG)
ZORVAN_TYPE_CONSTANT(jpeg2000, kUTTypeJPEG2000)
ZORVAN_TYPE_CONSTANT(tiff, kUTTypeTIFF)
ZORVAN_TYPE_CONSTANT(pict, kUTTypePICT)
ZORVAN_TYPE_CONSTANT(gif, kUTTypeGIF)
ZORVAN_TYPE_CONSTANT(png, kUTTypePNG)
ZORVAN_TYPE_CONSTANT(quickTimeImage, kUTTypeQuickTimeImage)
ZORVAN_TYPE_CONSTANT(audiovisualContent, kUTTypeAudiovisualContent)
ZORVAN_TYPE_CONSTANT(movie, kUTTypeMovie)
ZORVAN_TYPE_CONSTANT(video, kUTTypeVideo)
ZORVAN_TYPE_CONSTANT(audio, kUTTypeAudio)
ZORVAN_TYPE_CONSTANT(qtMovie, kUTTypeQuickTimeMovie)
ZORVAN_TYPE_CONSTANT(mpeg, kUTTypeMPEG)
ZORVAN_TYPE_CONSTANT(mpeg4, kUTTypeMPEG4)
ZORVAN_TYPE_CONSTANT(mP3, kUTTypeMP3)
ZORVAN_TYPE_CONSTANT(mpeg4Audio, kUTTypeMPEG4Audio)
ZORVAN_TYPE_CONSTANT(folder, kUTTypeFolder)
ZORVAN_TYPE_CONSTANT(volume, kUTTypeVolume)
ZORVAN_TYPE_CONSTANT(package, kUTTypePackage)
ZORVAN_TYPE_CONSTANT(bundle, kUTTypeBundle)
ZORVAN_TYPE_CONSTANT(framework, kUTTypeFramework)
ZORVAN_TYPE_CONSTANT(applicationBundle, kUTTypeApplicationBundle)
ZORVAN_TYPE_CONSTANT(applicationFile, kUTTypeApplicationFile)
ZORVAN_TYPE_CONSTANT(vCard, kUTTypeVCard)
ZORVAN_TYPE_CONSTANT(inkText, kUTTypeInkText)

#undef ZORVAN_TYPE_CONSTANT

} // namespace zorvan

std::size_t std::hash<zorvan::UTIType>::operator()(const zorvan::UTIType& type) const noexcept {
    std::size_t hash = 14695981039346656037u; // FNV-1a
    for (const char c : type.identifier()) {
        const char lower = zorvan::internal::lowered(c);
        hash = (hash ^ static_cast<unsigned char>(lower)) * 1099511628211u;
    }
    return hash;
}
