#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <string_view>

#include <webp/decode.h>

namespace zorvan::imageio {
namespace {

constexpr std::uint64_t fileHeadSize = 12;
constexpr std::uint64_t chunkHeadSize = 8;
constexpr int maximumChunks = 10'000;

/// The first picture of an animation, and where it stands on the canvas.
struct Frame {
    PixelRect place;
    std::uint64_t start = 0;
    std::uint64_t length = 0;

    PixelSize size() const { return {place.width, place.height}; }
};

struct Header {
    PixelSize size;
    bool hasAlpha = false;
    bool isComplete = true;
    Data exif = {};
    /// Absent when the file is no animation.
    std::optional<Frame> frame = {};
};

void check(VP8StatusCode status) {
    switch (status) {
    case VP8_STATUS_OK:
        return;
    case VP8_STATUS_OUT_OF_MEMORY:
        throw Failure{reason::noMemory};
    case VP8_STATUS_NOT_ENOUGH_DATA:
        throw Failure{reason::cutShort};
    case VP8_STATUS_UNSUPPORTED_FEATURE:
        throw Failure{reason::unsupported};
    default:
        throw Failure{reason::damaged};
    }
}

const std::uint8_t* octets(Bytes bytes) {
    return reinterpret_cast<const std::uint8_t*>(bytes.data());
}

std::optional<Frame> frameAt(ByteSource& source, std::uint64_t start, std::uint64_t length) {
    std::array<std::byte, 16> head;
    if (length < head.size() || !source.fill(start, head))
        return std::nullopt;
    const auto number = [&](std::size_t offset) {
        return static_cast<std::int64_t>(littleEndian(head, offset, 3));
    };
    return Frame{.place = {number(0) * 2, number(3) * 2, number(6) + 1, number(9) + 1},
                 .start = start + head.size(),
                 .length = length - head.size()};
}

/// The chunks beside the pixels: Exif, and the first picture of an animation.
void readChunks(ByteSource& source, Header& header) {
    std::uint64_t position = fileHeadSize;
    for (int i = 0; i < maximumChunks; ++i) {
        std::array<std::byte, chunkHeadSize> head;
        if (!source.fill(position, head))
            return;
        const std::string_view name = textOf(head).substr(0, 4);
        const std::uint64_t length = littleEndian(head, 4, 4);
        position += chunkHeadSize;
        if (name == "EXIF" && header.exif.empty() && length <= maximumMetadataSize) {
            const Data chunk = source.bytes(position, length);
            const Bytes block = withoutExifSignature(chunk);
            header.exif.assign(block.begin(), block.end());
        } else if (name == "ANMF" && !header.frame) {
            header.frame = frameAt(source, position, length);
        }
        position += length + (length & 1);
    }
}

Header headerOf(ByteSource& source) {
    const Data head = source.bytes(0, 64);
    WebPBitstreamFeatures features = {};
    check(WebPGetFeatures(octets(head), head.size(), &features));
    Header header = {.size = {features.width, features.height},
                     .hasAlpha = features.has_alpha != 0,
                     .isComplete = littleEndian(head, 4, 4) + chunkHeadSize <= source.size()};
    constexpr std::size_t kind = 15; // the last letter of the first chunk's name
    if (std::to_integer<char>(head[kind]) == 'X')
        readChunks(source, header);
    if (features.has_animation != 0 && !header.frame)
        throw Failure{header.isComplete ? reason::damaged : reason::cutShort};
    if (!features.has_animation)
        header.frame.reset();
    return header;
}

/// Decodes at the size that is wanted.
Bitmap decoded(Bytes bytes, PixelSize stored, PixelSize wanted) {
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0)
        throw Failure{reason::unsupported};
    check(WebPGetFeatures(octets(bytes), bytes.size(), &config.input));
    if (PixelSize{config.input.width, config.input.height} != stored)
        throw Failure{reason::damaged};
    Bitmap bitmap = bitmapOf(wanted);
    config.options.use_scaling = wanted != stored;
    config.options.scaled_width = static_cast<int>(wanted.width);
    config.options.scaled_height = static_cast<int>(wanted.height);
    config.output.colorspace = MODE_rgbA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {bitmap.data(), static_cast<int>(bitmap.bytesPerRow()),
                            static_cast<std::size_t>(bitmap.byteCount())};
    check(WebPDecode(octets(bytes), bytes.size(), &config));
    return bitmap;
}

/// The picture at its place on the canvas, which is transparent elsewhere.
Bitmap onCanvas(const Bitmap& picture, const Frame& frame, PixelSize canvas, PixelSize wanted) {
    PictureSink sink(canvas, wanted);
    std::int64_t y = 0;
    sink.putOnCanvas(canvas, frame.place, [&](std::uint8_t* out, std::int64_t count) {
        std::copy_n(picture.row(y++), count * 4, out);
    });
    return sink.take();
}

class WebPReader final : public HeaderReader<Header> {
public:
    using HeaderReader::HeaderReader;

private:
    Header readHeader() override { return headerOf(source()); }

    Bytes exif() override { return header().exif; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf({.size = header().size,
                             .hasAlpha = header().hasAlpha,
                             .orientation = exifOrientation(exif())},
                            exif());
    }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        const Header& head = header();
        checkSize(head.size);
        if (!head.isComplete)
            throw Failure{reason::cutShort};
        checkProportion(head.size, usualPixels(source().size()));
        const PixelSize wanted = wantedSize(head.size, options);
        if (!head.frame)
            return decoded(wholeFile(source()), head.size, wanted);
        const PixelSize size = head.frame->size();
        checkSize(size);
        const Data bytes = source().bytes(head.frame->start, head.frame->length);
        if (size == head.size)
            return decoded(bytes, size, wanted);
        return onCanvas(decoded(bytes, size, size), *head.frame, head.size, wanted);
    }
};

} // namespace

extern "C" void zorvanMakeWebPReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<WebPReader>(format, std::move(source));
}

} // namespace zorvan::imageio
