#include <zorvan/platform/imageio/ImageReader.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

using namespace std::string_view_literals;

/// Stands for a file that could not be opened or is no picture.
class UnreadableFile final : public ImageReader {
public:
    explicit UnreadableFile(std::string error) : error_(std::move(error)) {}
    std::string error() const override { return error_; }
    std::optional<FileFormat> format() const noexcept override { return std::nullopt; }
    std::int64_t count() override { return 0; }
    std::optional<PropertyList::Dictionary> properties(std::int64_t) override {
        return std::nullopt;
    }
    std::optional<int> orientation(std::int64_t) override { return std::nullopt; }
    std::optional<Bitmap> decode(std::int64_t, const DecodeOptions&) override {
        return std::nullopt;
    }
    std::optional<Bitmap> embeddedThumbnail(std::int64_t) override { return std::nullopt; }

private:
    std::string error_;
};

bool startsWith(Bytes head, std::string_view signature) {
    return head.size() >= signature.size() &&
           std::string_view(reinterpret_cast<const char*>(head.data()), signature.size()) ==
               signature;
}

bool startsWithAny(Bytes head, std::initializer_list<std::string_view> signatures) {
    return std::any_of(signatures.begin(), signatures.end(),
                       [&](std::string_view signature) { return startsWith(head, signature); });
}

bool isJpeg(Bytes head) { return startsWith(head, "\xFF\xD8\xFF"sv); }

bool isPng(Bytes head) { return startsWith(head, "\x89PNG\r\n\x1a\n"sv); }

bool isTiff(Bytes head) {
    return startsWithAny(head, {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv});
}

bool isWebP(Bytes head) {
    return startsWith(head, "RIFF"sv) && head.size() >= 12 && startsWith(head.subspan(8), "WEBP"sv);
}

bool isGif(Bytes head) { return startsWithAny(head, {"GIF87a"sv, "GIF89a"sv}); }

bool isJpegXL(Bytes head) {
    return startsWithAny(head, {"\xFF\x0A"sv, "\0\0\0\x0CJXL \r\n\x87\n"sv});
}

bool isSvg(Bytes head) {
    std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
    if (text.starts_with("\xEF\xBB\xBF"sv))
        text.remove_prefix(3);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '<' &&
           (text.find("<svg") != std::string_view::npos ||
            text.find(":svg") != std::string_view::npos);
}

/// A file of a known kind that ends within its own signature.
bool isStartOfPicture(Bytes head) {
    const std::string_view there(reinterpret_cast<const char*>(head.data()), head.size());
    for (const std::string_view signature : {"\x89PNG\r\n\x1a\n"sv, "\xFF\xD8\xFF"sv, "GIF89a"sv})
        if (there.size() >= 2 && signature.starts_with(there))
            return true;
    return false;
}

struct Kind {
    bool (*matches)(Bytes head);
    std::unique_ptr<ImageReader> (*makeReader)(std::unique_ptr<ByteSource> source);
};

/// In the order in which they are asked.
constexpr std::array kinds = {
    Kind{isJpeg, makeJpegReader}, Kind{isPng, makePngReader},   Kind{isTiff, makeTiffReader},
    Kind{isAvif, makeAvifReader}, Kind{isHeif, makeHeicReader}, Kind{isWebP, makeWebPReader},
    Kind{isGif, makeGifReader},   Kind{isBmp, makeBmpReader},   Kind{isJpegXL, makeJpegXLReader},
    Kind{isSvg, makeSvgReader},
};

std::unique_ptr<ImageReader> readerFor(std::unique_ptr<ByteSource> source) {
    constexpr std::uint64_t searched = 4096; // of an SVG, comments and declarations may come before
    const Data head = source->bytes(0, searched);
    if (head.empty())
        return std::make_unique<UnreadableFile>("the file is empty");
    for (const Kind& kind : kinds)
        if (kind.matches(head))
            return kind.makeReader(std::move(source));
    return std::make_unique<UnreadableFile>(isStartOfPicture(head) ? reason::cutShort
                                                                   : "not a picture");
}

std::unique_ptr<ImageReader> makeHeifReader(std::unique_ptr<ByteSource> source, FileFormat format) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_HEIF_PICTURES, zorvanMakeHeifReader);
    if (!make)
        return std::make_unique<UnreadableFile>(reason::noDecoder);
    std::unique_ptr<ImageReader> reader;
    make(std::move(source), format, reader);
    return reader;
}

using MakeReader = void(std::unique_ptr<ByteSource>, std::unique_ptr<ImageReader>&);

std::unique_ptr<ImageReader> readerMadeBy(MakeReader* make, std::unique_ptr<ByteSource> source) {
    if (!make)
        return std::make_unique<UnreadableFile>(reason::noDecoder);
    std::unique_ptr<ImageReader> reader;
    make(std::move(source), reader);
    return reader;
}

} // namespace

std::unique_ptr<ImageReader> makeHeicReader(std::unique_ptr<ByteSource> source) {
    return makeHeifReader(std::move(source), FileFormat::heic);
}

std::unique_ptr<ImageReader> makeAvifReader(std::unique_ptr<ByteSource> source) {
    return makeHeifReader(std::move(source), FileFormat::avif);
}

std::unique_ptr<ImageReader> makeJpegXLReader(std::unique_ptr<ByteSource> source) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_JXL_PICTURES, zorvanMakeJpegXLReader);
    return readerMadeBy(make, std::move(source));
}

std::unique_ptr<ImageReader> makeTiffReader(std::unique_ptr<ByteSource> source) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_TIFF_PICTURES, zorvanMakeTiffReader);
    return readerMadeBy(make, std::move(source));
}

std::unique_ptr<ImageReader> makeWebPReader(std::unique_ptr<ByteSource> source) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_WEBP_PICTURES, zorvanMakeWebPReader);
    return readerMadeBy(make, std::move(source));
}

std::unique_ptr<ImageReader> makeGifReader(std::unique_ptr<ByteSource> source) {
    static const auto make = ZORVAN_FUNCTION(ZORVAN_GIF_PICTURES, zorvanMakeGifReader);
    return readerMadeBy(make, std::move(source));
}

std::string_view typeIdentifier(FileFormat format) noexcept {
    switch (format) {
    case FileFormat::png:
        return "public.png";
    case FileFormat::jpeg:
        return "public.jpeg";
    case FileFormat::tiff:
        return "public.tiff";
    case FileFormat::heic:
        return "public.heic";
    case FileFormat::webp:
        return "org.webmproject.webp";
    case FileFormat::avif:
        return "public.avif";
    case FileFormat::gif:
        return "com.compuserve.gif";
    case FileFormat::bmp:
        return "com.microsoft.bmp";
    case FileFormat::svg:
        return "public.svg-image";
    case FileFormat::jpegXL:
        return "public.jpeg-xl";
    }
    return {};
}

std::unique_ptr<ImageReader> ImageReader::open(const std::string& path) {
    OpenedFile file = sourceOfFile(path);
    if (!file.source)
        return std::make_unique<UnreadableFile>(std::move(file.error));
    return readerFor(std::move(file.source));
}

std::unique_ptr<ImageReader> ImageReader::open(Data bytes) {
    return readerFor(sourceOver(std::move(bytes)));
}

} // namespace zorvan::imageio
