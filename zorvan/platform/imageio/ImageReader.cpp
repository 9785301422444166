#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

/// Stands for a file that could not be opened or is no picture.
class UnreadableFile final : public ImageReader {
public:
    explicit UnreadableFile(std::string error) : error_(std::move(error)) {}
    std::string_view error() const noexcept override { return error_; }
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

bool isTiff(Bytes head) {
    using namespace std::string_view_literals;
    return startsWithAny(head, {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv});
}

bool isJpegXL(Bytes head) {
    using namespace std::string_view_literals;
    return startsWithAny(head, {"\xFF\x0A"sv, "\0\0\0\x0CJXL \r\n\x87\n"sv});
}

bool isWebP(Bytes head) {
    return startsWith(head, "RIFF") && head.size() >= 12 && startsWith(head.subspan(8), "WEBP");
}

/// A file of a known kind that ends within its own signature.
bool isStartOfPicture(Bytes head) {
    using namespace std::string_view_literals;
    const std::string_view there(reinterpret_cast<const char*>(head.data()), head.size());
    for (const std::string_view signature : {"\x89PNG\r\n\x1a\n"sv, "\xFF\xD8\xFF"sv, "GIF89a"sv})
        if (there.size() >= 2 && signature.starts_with(there))
            return true;
    return false;
}

std::unique_ptr<ImageReader> readerFor(std::unique_ptr<ByteSource> source) {
    using namespace std::string_view_literals;
    std::array<std::byte, 64> buffer;
    const Bytes head(buffer.data(), source->read(0, buffer.data(), buffer.size()));
    if (head.empty())
        return std::make_unique<UnreadableFile>("the file is empty");
    if (startsWith(head, "\xFF\xD8\xFF"sv))
        return makeJpegReader(std::move(source));
    if (startsWith(head, "\x89PNG\r\n\x1a\n"sv))
        return makePngReader(std::move(source));
    if (isTiff(head))
        return makeTiffReader(std::move(source));
    if (isHeif(head))
        return makeHeifReader(std::move(source),
                              isAvif(head) ? FileFormat::avif : FileFormat::heic);
    if (isWebP(head))
        return makeWebPReader(std::move(source));
    if (startsWithAny(head, {"GIF87a"sv, "GIF89a"sv}))
        return makeGifReader(std::move(source));
    if (isBmp(head))
        return makeBmpReader(std::move(source));
    if (isJpegXL(head))
#ifdef ZORVAN_JPEG_XL
        return makeJpegXLReader(std::move(source));
#else
        return std::make_unique<UnreadableFile>(reason::unsupported);
#endif
    if (isSvg(*source))
        return makeSvgReader(std::move(source));
    return std::make_unique<UnreadableFile>(isStartOfPicture(head) ? reason::cutShort
                                                                   : "not a picture");
}

} // namespace

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
