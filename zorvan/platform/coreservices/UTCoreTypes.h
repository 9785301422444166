#pragma once

#include <string_view>

namespace zorvan {

// The identifiers of the named types. What each conforms to is in the conformance graph.

inline constexpr std::string_view kUTTypeItem = "public.item";
inline constexpr std::string_view kUTTypeContent = "public.content";
inline constexpr std::string_view kUTTypeCompositeContent = "public.composite-content";
inline constexpr std::string_view kUTTypeApplication = "com.apple.application";
inline constexpr std::string_view kUTTypeMessage = "public.message";
inline constexpr std::string_view kUTTypeContact = "public.contact";
inline constexpr std::string_view kUTTypeArchive = "public.archive";
inline constexpr std::string_view kUTTypeDiskImage = "public.disk-image";
inline constexpr std::string_view kUTTypeData = "public.data";
inline constexpr std::string_view kUTTypeDirectory = "public.directory";
inline constexpr std::string_view kUTTypeResolvable = "com.apple.resolvable";
inline constexpr std::string_view kUTTypeSymLink = "public.symlink";
inline constexpr std::string_view kUTTypeMountPoint = "com.apple.mount-point";
inline constexpr std::string_view kUTTypeAliasFile = "com.apple.alias-file";
inline constexpr std::string_view kUTTypeAliasRecord = "com.apple.alias-record";
inline constexpr std::string_view kUTTypeURL = "public.url";
inline constexpr std::string_view kUTTypeFileURL = "public.file-url";
inline constexpr std::string_view kUTTypeText = "public.text";
inline constexpr std::string_view kUTTypePlainText = "public.plain-text";
inline constexpr std::string_view kUTTypeUTF8PlainText = "public.utf8-plain-text";
inline constexpr std::string_view kUTTypeUTF16PlainText = "public.utf16-plain-text";
inline constexpr std::string_view kUTTypeRTF = "public.rtf";
inline constexpr std::string_view kUTTypeHTML = "public.html";
inline constexpr std::string_view kUTTypeXML = "public.xml";
inline constexpr std::string_view kUTTypeSourceCode = "public.source-code";
inline constexpr std::string_view kUTTypeCSource = "public.c-source";
inline constexpr std::string_view kUTTypeObjectiveCSource = "public.objective-c-source";
inline constexpr std::string_view kUTTypeCPlusPlusSource = "public.c-plus-plus-source";
inline constexpr std::string_view kUTTypeObjectiveCPlusPlusSource =
    "public.objective-c-plus-plus-source";
inline constexpr std::string_view kUTTypeCHeader = "public.c-header";
inline constexpr std::string_view kUTTypeCPlusPlusHeader = "public.c-plus-plus-header";
inline constexpr std::string_view kUTTypeJavaSource = "com.sun.java-source";
inline constexpr std::string_view kUTTypePDF = "com.adobe.pdf";
inline constexpr std::string_view kUTTypeRTFD = "com.apple.rtfd";
inline constexpr std::string_view kUTTypeFlatRTFD = "com.apple.flat-rtfd";
inline constexpr std::string_view kUTTypeWebArchive = "com.apple.webarchive";
inline constexpr std::string_view kUTTypeImage = "public.image";
inline constexpr std::string_view kUTTypeJPEG = "public.jpeg";
inline constexpr std::string_view kUTTypeJPEG2000 = "public.jpeg-2000";
inline constexpr std::string_view kUTTypeTIFF = "public.tiff";
inline constexpr std::string_view kUTTypePICT = "com.apple.pict";
inline constexpr std::string_view kUTTypeGIF = "com.compuserve.gif";
inline constexpr std::string_view kUTTypePNG = "public.png";
inline constexpr std::string_view kUTTypeQuickTimeImage = "com.apple.quicktime-image";
inline constexpr std::string_view kUTTypeAudiovisualContent = "public.audiovisual-content";
inline constexpr std::string_view kUTTypeMovie = "public.movie";
inline constexpr std::string_view kUTTypeVideo = "public.video";
inline constexpr std::string_view kUTTypeAudio = "public.audio";
inline constexpr std::string_view kUTTypeQuickTimeMovie = "com.apple.quicktime-movie";
inline constexpr std::string_view kUTTypeMPEG = "public.mpeg";
inline constexpr std::string_view kUTTypeMPEG4 = "public.mpeg-4";
inline constexpr std::string_view kUTTypeMP3 = "public.mp3";
inline constexpr std::string_view kUTTypeMPEG4Audio = "public.mpeg-4-audio";
inline constexpr std::string_view kUTTypeFolder = "public.folder";
inline constexpr std::string_view kUTTypeVolume = "public.volume";
inline constexpr std::string_view kUTTypePackage = "com.apple.package";
inline constexpr std::string_view kUTTypeBundle = "com.apple.bundle";
inline constexpr std::string_view kUTTypeFramework = "com.apple.framework";
inline constexpr std::string_view kUTTypeApplicationBundle = "com.apple.application-bundle";
inline constexpr std::string_view kUTTypeApplicationFile = "com.apple.application-file";
inline constexpr std::string_view kUTTypeVCard = "public.vcard";
inline constexpr std::string_view kUTTypeInkText = "com.apple.ink.inktext";

} // namespace zorvan
