#include <zorvan/platform/coreservices/internal/TypeDeclarations.h>

#include <zorvan/platform/coreservices/UTCoreTypes.h>
#include <zorvan/platform/coreservices/internal/words.h>

#include <array>
#include <bitset>
#include <string>
#include <unordered_map>

namespace zorvan::coreservices {

namespace {

// Parents may stand after their children.
constexpr TypeDeclaration declarations[] = {
    // What things are made of.
    {kUTTypeItem, "", "", "", "item"},
    {kUTTypeContent, "", "", "", "content"},
    {kUTTypeCompositeContent, "public.content", "", "", "mixed content"},
    {kUTTypeData, "public.item", "", "application/octet-stream", "data"},
    {kUTTypeDirectory, "public.item", "", "inode/directory", "directory"},
    {"public.executable", "public.item", "", "", "executable"},
    {kUTTypeMessage, "", "", "", "message"},
    {kUTTypeContact, "", "", "", "contact"},
    {kUTTypeArchive, "", "", "", "archive"},
    {kUTTypeDiskImage, "", "", "", "disk image"},
    {kUTTypeResolvable, "", "", "", "pointer to another item"},
    {kUTTypeSymLink, "public.item com.apple.resolvable", "", "inode/symlink", "symbolic link"},
    {kUTTypeMountPoint, "public.item com.apple.resolvable", "", "inode/mount-point", "mount point"},
    {kUTTypeAliasFile, "public.data com.apple.resolvable", "", "", "alias file"},
    {kUTTypeAliasRecord, "public.data com.apple.resolvable", "", "", "alias record"},
    {kUTTypeURL, "public.data", "", "", "location"},
    {kUTTypeFileURL, "public.url", "", "", "file location"},

    // Directories.
    {kUTTypeFolder, "public.directory", "", "", "folder"},
    {kUTTypeVolume, "public.folder", "", "", "volume"},
    {kUTTypePackage, "public.directory", "", "", "package"},
    {kUTTypeBundle, "public.directory", "", "", "bundle"},
    {kUTTypeFramework, "com.apple.bundle", "framework", "", "framework"},
    {kUTTypeApplication, "public.executable", "", "", "application"},
    {kUTTypeApplicationBundle, "com.apple.application com.apple.bundle com.apple.package", "app",
     "", "application bundle"},
    {kUTTypeApplicationFile, "com.apple.application public.data", "", "", "application file"},

    // Text.
    {kUTTypeText, "public.data public.content", "", "", "text"},
    {kUTTypePlainText, "public.text", "txt text", "text/plain", "plain text"},
    {kUTTypeUTF8PlainText, "public.plain-text", "", "text/plain;charset=utf-8", "UTF-8 text"},
    {kUTTypeUTF16PlainText, "public.plain-text", "", "text/plain;charset=utf-16", "UTF-16 text"},
    {kUTTypeRTF, "public.text", "rtf", "text/rtf application/rtf", "rich text"},
    {kUTTypeHTML, "public.text", "html htm shtml shtm", "text/html", "HTML text"},
    {kUTTypeXML, "public.text", "xml", "text/xml application/xml", "XML text"},
    {"public.xhtml", "public.xml", "xhtml xht", "application/xhtml+xml", "XHTML text"},
    {"public.json", "public.text", "json", "application/json", "JSON text"},
    {"public.comma-separated-values-text", "public.text", "csv", "text/csv", "CSV text"},
    {"public.tab-separated-values-text", "public.text", "tsv", "text/tab-separated-values",
     "tab-separated text"},
    {kUTTypeSourceCode, "public.plain-text", "", "", "source code"},
    {kUTTypeCSource, "public.source-code", "c", "text/x-csrc", "C source"},
    {kUTTypeObjectiveCSource, "public.source-code", "m", "text/x-objcsrc", "Objective-C source"},
    {kUTTypeCPlusPlusSource, "public.source-code", "cpp cc cp cxx c++", "text/x-c++src",
     "C++ source"},
    {kUTTypeObjectiveCPlusPlusSource, "public.source-code", "mm", "text/x-objc++src",
     "Objective-C++ source"},
    {kUTTypeCHeader, "public.source-code", "h", "text/x-chdr", "C header"},
    {kUTTypeCPlusPlusHeader, "public.source-code", "hpp hh hxx h++", "text/x-c++hdr", "C++ header"},
    {kUTTypeJavaSource, "public.source-code", "java jav", "text/x-java", "Java source"},
    {"public.script", "public.source-code", "", "", "script"},
    {"public.shell-script", "public.script", "sh command", "application/x-shellscript",
     "shell script"},
    {"public.python-script", "public.script", "py", "text/x-python", "Python script"},
    {"public.perl-script", "public.script", "pl pm", "application/x-perl", "Perl script"},
    {"public.ruby-script", "public.script", "rb rbw", "application/x-ruby", "Ruby script"},
    {"public.php-script", "public.script", "php php3 php4 ph3 ph4 phtml", "application/x-php",
     "PHP script"},
    {kUTTypeVCard, "public.text public.contact", "vcf vcard", "text/vcard text/x-vcard", "vCard"},
    {kUTTypeInkText, "public.data", "", "", "handwritten text"},

    // Documents.
    {kUTTypePDF, "public.data public.composite-content", "pdf", "application/pdf", "PDF document"},
    {kUTTypeRTFD, "com.apple.package public.composite-content", "rtfd", "",
     "rich text with attachments"},
    {kUTTypeFlatRTFD, "public.data public.composite-content", "", "",
     "rich text with attachments, as one file"},
    {kUTTypeWebArchive, "public.data public.composite-content", "webarchive", "", "web archive"},

    // Pictures.
    {kUTTypeImage, "public.data public.content", "", "", "image"},
    {kUTTypeJPEG, "public.image", "jpg jpeg jpe", "image/jpeg image/jpg", "JPEG image"},
    {kUTTypeJPEG2000, "public.image", "jp2 jpf jpx j2k j2c", "image/jp2", "JPEG 2000 image"},
    {kUTTypeTIFF, "public.image", "tiff tif", "image/tiff", "TIFF image"},
    {kUTTypePICT, "public.image", "pict pct pic", "image/x-pict image/pict", "PICT image"},
    {kUTTypeGIF, "public.image", "gif", "image/gif", "GIF image"},
    {kUTTypePNG, "public.image", "png apng", "image/png", "PNG image"},
    {kUTTypeQuickTimeImage, "public.image", "qtif qti", "image/x-quicktime", "QuickTime image"},
    {"public.heif-standard", "public.image", "", "", "HEIF image"},
    {"public.heif", "public.heif-standard", "heif hif", "image/heif", "HEIF image"},
    {"public.heic", "public.heif-standard", "heic", "image/heic", "HEIC image"},
    {"public.heics", "public.heif-standard", "heics", "image/heic-sequence", "HEIC image sequence"},
    {"public.avif", "public.heif-standard", "avif", "image/avif", "AVIF image"},
    {"org.webmproject.webp", "public.image", "webp", "image/webp", "WebP image"},
    {"com.microsoft.bmp", "public.image", "bmp dib", "image/bmp", "Windows bitmap image"},
    {"com.microsoft.ico", "public.image", "ico", "image/vnd.microsoft.icon", "Windows icon"},
    {"public.svg-image", "public.image public.xml", "svg", "image/svg+xml", "SVG image"},
    {"com.adobe.photoshop-image", "public.image", "psd", "image/vnd.adobe.photoshop",
     "Photoshop image"},
    {"public.camera-raw-image", "public.image", "", "", "camera raw image"},
    {"com.adobe.raw-image", "public.camera-raw-image", "dng", "image/x-adobe-dng",
     "digital negative"},
    {"com.canon.cr2-raw-image", "public.camera-raw-image", "cr2", "image/x-canon-cr2",
     "Canon raw image"},
    {"com.nikon.raw-image", "public.camera-raw-image", "nef", "image/x-nikon-nef",
     "Nikon raw image"},
    {"com.sony.arw-raw-image", "public.camera-raw-image", "arw", "image/x-sony-arw",
     "Sony raw image"},

    // Sound and moving pictures.
    {kUTTypeAudiovisualContent, "public.data public.content", "", "", "audiovisual content"},
    {kUTTypeMovie, "public.audiovisual-content", "", "", "movie"},
    {kUTTypeVideo, "public.movie", "", "", "video"},
    {kUTTypeAudio, "public.audiovisual-content", "", "", "audio"},
    {kUTTypeQuickTimeMovie, "public.movie", "mov qt", "video/quicktime", "QuickTime movie"},
    {kUTTypeMPEG, "public.movie", "mpg mpeg mpe", "video/mpeg", "MPEG movie"},
    {kUTTypeMPEG4, "public.movie", "mp4 mpg4", "video/mp4", "MPEG-4 movie"},
    {kUTTypeMP3, "public.audio", "mp3 mpga", "audio/mpeg", "MP3 audio"},
    {kUTTypeMPEG4Audio, "public.mpeg-4 public.audio", "m4a", "audio/mp4", "MPEG-4 audio"},
    {"public.avi", "public.movie", "avi vfw", "video/x-msvideo video/avi", "AVI movie"},
    {"org.matroska.mkv", "public.movie", "mkv", "video/x-matroska", "Matroska movie"},
    {"org.webmproject.webm", "public.movie", "webm", "video/webm", "WebM movie"},
    {"com.microsoft.waveform-audio", "public.audio", "wav wave", "audio/x-wav audio/wav",
     "Waveform audio"},
    {"public.aiff-audio", "public.audio", "aiff aif", "audio/x-aiff", "AIFF audio"},
    {"org.xiph.flac", "public.audio", "flac", "audio/flac", "FLAC audio"},

    // Archives and disk images.
    {"public.zip-archive", "public.data public.archive", "zip", "application/zip", "ZIP archive"},
    {"public.tar-archive", "public.data public.archive", "tar", "application/x-tar", "tar archive"},
    {"org.gnu.gnu-zip-archive", "public.data public.archive", "gz gzip", "application/gzip",
     "gzip archive"},
    {"org.gnu.gnu-zip-tar-archive", "org.gnu.gnu-zip-archive", "tgz",
     "application/x-compressed-tar", "gzip-compressed tar archive"},
    {"public.bzip2-archive", "public.data public.archive", "bz2 bz", "application/x-bzip",
     "bzip2 archive"},
    {"org.tukaani.xz-archive", "public.data public.archive", "xz", "application/x-xz",
     "xz archive"},
    {"org.7-zip.7-zip-archive", "public.data public.archive", "7z", "application/x-7z-compressed",
     "7z archive"},
    {"com.rarlab.rar-archive", "public.data public.archive", "rar", "application/vnd.rar",
     "RAR archive"},
    {"public.iso-image", "public.data public.disk-image", "iso", "application/x-cd-image",
     "ISO disk image"},
};

constexpr std::size_t count = std::size(declarations);

using Index = std::unordered_map<std::string, TypeIndex>;

struct Graph {
    Graph() {
        for (TypeIndex type = 0; type < count; ++type) {
            const TypeDeclaration& declaration = declarations[type];
            identifiers.emplace(lowered(declaration.identifier), type);
            addTags(extensions, declaration.extensions, type);
            addTags(mimeTypes, declaration.mimeTypes, type);
        }
        for (TypeIndex type = 0; type < count; ++type)
            addAncestors(type, type);
    }

    static void addTags(Index& index, std::string_view tags, TypeIndex type) {
        forEachPart(tags, ' ', [&](std::string_view tag) { index.emplace(tag, type); });
    }

    void addAncestors(TypeIndex type, TypeIndex ancestor) {
        if (ancestors[type].test(ancestor))
            return;
        ancestors[type].set(ancestor);
        forEachPart(declarations[ancestor].conformsTo, ' ', [&](std::string_view parent) {
            addAncestors(type, identifiers.at(std::string(parent)));
        });
    }

    Index identifiers;
    Index extensions;
    Index mimeTypes;
    std::array<std::bitset<count>, count> ancestors; // each type is its own too
};

const Graph& graph() {
    static const Graph graph;
    return graph;
}

std::optional<TypeIndex> find(const Index& index, std::string_view text) {
    const auto found = index.find(lowered(text));
    return found == index.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::span<const TypeDeclaration> typeDeclarations() noexcept { return declarations; }

std::optional<TypeIndex> typeWithIdentifier(std::string_view identifier) {
    return find(graph().identifiers, identifier);
}

std::optional<TypeIndex> typeWithExtension(std::string_view extension) {
    return find(graph().extensions, extension);
}

std::optional<TypeIndex> typeWithMimeType(std::string_view mimeType) {
    return find(graph().mimeTypes, mimeType);
}

bool typeConforms(TypeIndex type, TypeIndex other) { return graph().ancestors[type].test(other); }

} // namespace zorvan::coreservices
