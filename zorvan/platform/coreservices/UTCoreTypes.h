#pragma once

#include <zorvan/platform/foundation/NameLiteral.h>

namespace zorvan {

// The identifiers of the named types. What each conforms to is in the conformance graph.

/// The identifier of the type of that name.
/// @{
inline constexpr NameLiteral kUTTypeItem = "public.item";
inline constexpr NameLiteral kUTTypeContent = "public.content";
inline constexpr NameLiteral kUTTypeCompositeContent = "public.composite-content";
inline constexpr NameLiteral kUTTypeApplication = "com.apple.application";
inline constexpr NameLiteral kUTTypeMessage = "public.message";
inline constexpr NameLiteral kUTTypeContact = "public.contact";
inline constexpr NameLiteral kUTTypeArchive = "public.archive";
inline constexpr NameLiteral kUTTypeDiskImage = "public.disk-image";
inline constexpr NameLiteral kUTTypeData = "public.data";
inline constexpr NameLiteral kUTTypeDirectory = "public.directory";
inline constexpr NameLiteral kUTTypeResolvable = "com.apple.resolvable";
inline constexpr NameLiteral kUTTypeSymLink = "public.symlink";
inline constexpr NameLiteral kUTTypeMountPoint = "com.apple.mount-point";
inline constexpr NameLiteral kUTTypeAliasFile = "com.apple.alias-file";
inline constexpr NameLiteral kUTTypeAliasRecord = "com.apple.alias-record";
inline constexpr NameLiteral kUTTypeURL = "public.url";
inline constexpr NameLiteral kUTTypeFileURL = "public.file-url";
inline constexpr NameLiteral kUTTypeText = "public.text";
inline constexpr NameLiteral kUTTypePlainText = "public.plain-text";
inline constexpr NameLiteral kUTTypeUTF8PlainText = "public.utf8-plain-text";
inline constexpr NameLiteral kUTTypeUTF16PlainText = "public.utf16-plain-text";
inline constexpr NameLiteral kUTTypeRTF = "public.rtf";
inline constexpr NameLiteral kUTTypeHTML = "public.html";
inline constexpr NameLiteral kUTTypeXML = "public.xml";
inline constexpr NameLiteral kUTTypeSourceCode = "public.source-code";
inline constexpr NameLiteral kUTTypeCSource = "public.c-source";
inline constexpr NameLiteral kUTTypeObjectiveCSource = "public.objective-c-source";
inline constexpr NameLiteral kUTTypeCPlusPlusSource = "public.c-plus-plus-source";
inline constexpr NameLiteral kUTTypeObjectiveCPlusPlusSource =
    "public.objective-c-plus-plus-source";
inline constexpr NameLiteral kUTTypeCHeader = "public.c-header";
inline constexpr NameLiteral kUTTypeCPlusPlusHeader = "public.c-plus-plus-header";
inline constexpr NameLiteral kUTTypeJavaSource = "com.sun.java-source";
inline constexpr NameLiteral kUTTypePDF = "com.adobe.pdf";
inline constexpr NameLiteral kUTTypeRTFD = "com.apple.rtfd";
inline constexpr NameLiteral kUTTypeFlatRTFD = "com.apple.flat-rtfd";
inline constexpr NameLiteral kUTTypeWebArchive = "com.apple.webarchive";
inline constexpr NameLiteral kUTTypeImage = "public.image";
inline constexpr NameLiteral kUTTypeJPEG = "public.jpeg";
inline constexpr NameLiteral kUTTypeJPEG2000 = "public.jpeg-2000";
inline constexpr NameLiteral kUTTypeTIFF = "public.tiff";
inline constexpr NameLiteral kUTTypePICT = "com.apple.pict";
inline constexpr NameLiteral kUTTypeGIF = "com.compuserve.gif";
inline constexpr NameLiteral kUTTypePNG = "public.png";
inline constexpr NameLiteral kUTTypeQuickTimeImage = "com.apple.quicktime-image";
inline constexpr NameLiteral kUTTypeAudiovisualContent = "public.audiovisual-content";
inline constexpr NameLiteral kUTTypeMovie = "public.movie";
inline constexpr NameLiteral kUTTypeVideo = "public.video";
inline constexpr NameLiteral kUTTypeAudio = "public.audio";
inline constexpr NameLiteral kUTTypeQuickTimeMovie = "com.apple.quicktime-movie";
inline constexpr NameLiteral kUTTypeMPEG = "public.mpeg";
inline constexpr NameLiteral kUTTypeMPEG4 = "public.mpeg-4";
inline constexpr NameLiteral kUTTypeMP3 = "public.mp3";
inline constexpr NameLiteral kUTTypeMPEG4Audio = "public.mpeg-4-audio";
inline constexpr NameLiteral kUTTypeFolder = "public.folder";
inline constexpr NameLiteral kUTTypeVolume = "public.volume";
inline constexpr NameLiteral kUTTypePackage = "com.apple.package";
inline constexpr NameLiteral kUTTypeBundle = "com.apple.bundle";
inline constexpr NameLiteral kUTTypeFramework = "com.apple.framework";
inline constexpr NameLiteral kUTTypeApplicationBundle = "com.apple.application-bundle";
inline constexpr NameLiteral kUTTypeApplicationFile = "com.apple.application-file";
inline constexpr NameLiteral kUTTypeVCard = "public.vcard";
inline constexpr NameLiteral kUTTypeInkText = "com.apple.ink.inktext";
/// @}

} // namespace zorvan
