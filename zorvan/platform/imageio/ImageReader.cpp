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

bool startsWithAny(Bytes head, std::initializer_list<std::string_view> signatures) {
    return std::ranges::any_of(signatures, [&](std::string_view signature) {
        return textOf(head).starts_with(signature);
    });
}

bool isJpeg(Bytes head) { return startsWithAny(head, {"\xFF\xD8\xFF"sv}); }

bool isPng(Bytes head) { return startsWithAny(head, {"\x89PNG\r\n\x1a\n"sv}); }

bool isTiff(Bytes head) {
    return startsWithAny(head, {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv});
}

bool isWebP(Bytes head) {
    return startsWithAny(head, {"RIFF"sv}) && head.size() >= 12 &&
           startsWithAny(head.subspan(8), {"WEBP"sv});
}

bool isGif(Bytes head) { return startsWithAny(head, {"GIF87a"sv, "GIF89a"sv}); }

bool isJpegXL(Bytes head) {
    return startsWithAny(head, {"\xFF\x0A"sv, "\0\0\0\x0CJXL \r\n\x87\n"sv});
}

bool isSvg(Bytes head) {
    std::string_view text = textOf(head);
    if (text.starts_with("\xEF\xBB\xBF"sv))
        text.remove_prefix(3);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '<' &&
           (text.find("<svg") != std::string_view::npos ||
            text.find(":svg") != std::string_view::npos);
}

/// A file of a known kind that ends within its own signature.
bool isStartOfPicture(Bytes head) {
    const std::string_view there = textOf(head);
    for (const std::string_view signature : {"\x89PNG\r\n\x1a\n"sv, "\xFF\xD8\xFF"sv, "GIF89a"sv})
        if (there.size() >= 2 && signature.starts_with(there))
            return true;
    return false;
}

struct Kind {
    FileFormat format;
    bool (*matches)(Bytes head);
    MakeReader* builtIn = nullptr;
    /// Of the readers that are loaded by their first use; null when they cannot be.
    MakeReader* (*find)() = nullptr;
};

MakeReader* heifReader() { return ZORVAN_FUNCTION(ZORVAN_HEIF_PICTURES, zorvanMakeHeifReader); }
MakeReader* jxlReader() { return ZORVAN_FUNCTION(ZORVAN_JXL_PICTURES, zorvanMakeJpegXLReader); }
MakeReader* tiffReader() { return ZORVAN_FUNCTION(ZORVAN_TIFF_PICTURES, zorvanMakeTiffReader); }
MakeReader* webPReader() { return ZORVAN_FUNCTION(ZORVAN_WEBP_PICTURES, zorvanMakeWebPReader); }
MakeReader* gifReader() { return ZORVAN_FUNCTION(ZORVAN_GIF_PICTURES, zorvanMakeGifReader); }

template <MakeReader* (*find)()>
MakeReader* once() {
    static MakeReader* const found = find();
    return found;
}

/// In the order in which they are asked.
constexpr std::array kinds = {
    Kind{FileFormat::jpeg, isJpeg, makeJpegReader},
    Kind{FileFormat::png, isPng, makePngReader},
    Kind{FileFormat::tiff, isTiff, nullptr, once<tiffReader>},
    Kind{FileFormat::avif, isAvif, nullptr, once<heifReader>},
    Kind{FileFormat::heic, isHeif, nullptr, once<heifReader>},
    Kind{FileFormat::webp, isWebP, nullptr, once<webPReader>},
    Kind{FileFormat::gif, isGif, nullptr, once<gifReader>},
    Kind{FileFormat::bmp, isBmp, makeBmpReader},
    Kind{FileFormat::jpegXL, isJpegXL, nullptr, once<jxlReader>},
    Kind{FileFormat::svg, isSvg, makeSvgReader},
};

std::unique_ptr<ImageReader> readerOf(const Kind& kind, std::unique_ptr<ByteSource> source) {
    MakeReader* const make = kind.builtIn ? kind.builtIn : kind.find();
    if (!make)
        return std::make_unique<UnreadableFile>(reason::noDecoder);
    std::unique_ptr<ImageReader> reader;
    make(std::move(source), kind.format, reader);
    return reader;
}

std::unique_ptr<ImageReader> readerFor(std::unique_ptr<ByteSource> source) {
    constexpr std::uint64_t searched = 4096; // of an SVG, comments and declarations may come before
    const Data head = source->bytes(0, searched);
    if (head.empty())
        return std::make_unique<UnreadableFile>("the file is empty");
    for (const Kind& kind : kinds)
        if (kind.matches(head))
            return readerOf(kind, std::move(source));
    return std::make_unique<UnreadableFile>(isStartOfPicture(head) ? reason::cutShort
                                                                   : "not a picture");
}

} // namespace

std::string_view typeIdentifier(FileFormat format) noexcept {
    constexpr std::array identifiers = {
        "public.png"sv,           "public.jpeg"sv,   "public.tiff"sv,        "public.heic"sv,
        "org.webmproject.webp"sv, "public.avif"sv,   "com.compuserve.gif"sv, "com.microsoft.bmp"sv,
        "public.svg-image"sv,     "public.jpeg-xl"sv};
    const auto index = static_cast<std::size_t>(format);
    return index < identifiers.size() ? identifiers[index] : ""sv;
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
