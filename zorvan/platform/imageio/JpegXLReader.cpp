#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include <jxl/decode.h>

namespace zorvan::imageio {
namespace {

/// The codec works in reals, of which it holds a multiple of a bitmap's bytes.
constexpr std::int64_t maximumPixels = std::int64_t{1} << 27;

/// What stands around the pixels.
struct Header {
    JxlBasicInfo info = {};
    Data exif = {};

    PixelSize size() const { return {info.xsize, info.ysize}; }
    bool hasAlpha() const { return info.alpha_bits > 0; }
};

class Decoder {
public:
    Decoder(const Data& file, int events) : decoder_(JxlDecoderCreate(nullptr)) {
        if (!decoder_)
            throw Failure{reason::noMemory};
        check(JxlDecoderSubscribeEvents(get(), events));
        check(JxlDecoderSetKeepOrientation(get(), JXL_TRUE));
        check(JxlDecoderSetDecompressBoxes(get(), JXL_TRUE));
        check(JxlDecoderSetInput(get(), reinterpret_cast<const std::uint8_t*>(file.data()),
                                 file.size()));
        JxlDecoderCloseInput(get());
    }

    JxlDecoder* get() const noexcept { return decoder_.get(); }

    static void check(JxlDecoderStatus status) {
        if (status != JXL_DEC_SUCCESS)
            throw Failure{reason::damaged};
    }

    /// The next event. Throws when the file is at fault.
    JxlDecoderStatus next() {
        const JxlDecoderStatus status = JxlDecoderProcessInput(get());
        if (status == JXL_DEC_ERROR)
            throw Failure{reason::damaged};
        if (status == JXL_DEC_NEED_MORE_INPUT)
            throw Failure{reason::cutShort};
        return status;
    }

private:
    std::unique_ptr<JxlDecoder, Release<JxlDecoderDestroy>> decoder_;
};

/// Collects the Exif box; others are passed over.
class ExifBox {
public:
    explicit ExifBox(Decoder& decoder) : decoder_(decoder) {}

    void begin() {
        finish();
        JxlBoxType type = {};
        Decoder::check(JxlDecoderGetBoxType(decoder_.get(), type, JXL_TRUE));
        isOpen_ = bytes_.empty() && std::string_view(type, 4) == "Exif";
        if (isOpen_)
            grow();
    }

    void grow() {
        constexpr std::size_t piece = 64 << 10;
        takeBack();
        if (used_ > maximumMetadataSize)
            throw Failure{reason::tooLarge};
        bytes_.resize(used_ + piece);
        Decoder::check(JxlDecoderSetBoxBuffer(
            decoder_.get(), reinterpret_cast<std::uint8_t*>(bytes_.data()) + used_, piece));
        isLent_ = true;
    }

    void finish() {
        if (!isOpen_)
            return;
        takeBack();
        bytes_.resize(used_);
        isOpen_ = false;
    }

    /// The box begins with how many bytes stand before the block.
    Data block() const {
        const std::uint64_t skipped = 4 + std::uint64_t{big32(bytes_, 0)};
        if (skipped >= bytes_.size())
            return {};
        const Bytes block = withoutExifSignature(Bytes(bytes_).subspan(skipped));
        return Data(block.begin(), block.end());
    }

private:
    void takeBack() {
        if (isLent_)
            used_ = bytes_.size() - JxlDecoderReleaseBoxBuffer(decoder_.get());
        isLent_ = false;
    }

    Decoder& decoder_;
    Data bytes_ = {};
    std::size_t used_ = 0;
    bool isOpen_ = false;
    bool isLent_ = false;
};

Header readHeader(const Data& file) {
    Header header;
    Decoder decoder(file, JXL_DEC_BASIC_INFO | JXL_DEC_BOX);
    ExifBox box(decoder);
    try {
        for (JxlDecoderStatus status = decoder.next(); status != JXL_DEC_SUCCESS;
             status = decoder.next()) {
            if (status == JXL_DEC_BASIC_INFO)
                Decoder::check(JxlDecoderGetBasicInfo(decoder.get(), &header.info));
            else if (status == JXL_DEC_BOX)
                box.begin();
            else if (status == JXL_DEC_BOX_NEED_MORE_OUTPUT)
                box.grow();
        }
    } catch (const Failure&) {
        // What follows adds little; the size is worth having without it.
        if (header.info.xsize == 0)
            throw;
    }
    box.finish();
    header.exif = box.block();
    return header;
}

/// Colours that the file keeps in the codec's own form come as those of screens.
void askForScreenColours(Decoder& decoder) {
    JxlColorEncoding colours = {};
    colours.color_space = JXL_COLOR_SPACE_RGB;
    colours.white_point = JXL_WHITE_POINT_D65;
    colours.primaries = JXL_PRIMARIES_SRGB;
    colours.transfer_function = JXL_TRANSFER_FUNCTION_SRGB;
    colours.rendering_intent = JXL_RENDERING_INTENT_PERCEPTUAL;
    // Where it cannot be had, the colours stay as they come.
    static_cast<void>(JxlDecoderSetPreferredColorProfile(decoder.get(), &colours));
}

Bitmap decoded(const Data& file, const Header& header) {
    constexpr JxlPixelFormat format = {4, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
    std::optional<Bitmap> bitmap = Bitmap::make(header.size().width, header.size().height);
    if (!bitmap)
        throw Failure{reason::noMemory};
    Decoder decoder(file, JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE);
    for (;;) {
        switch (decoder.next()) {
        case JXL_DEC_COLOR_ENCODING:
            if (!header.info.uses_original_profile && header.info.num_color_channels == 3)
                askForScreenColours(decoder);
            break;
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            Decoder::check(
                JxlDecoderSetImageOutBuffer(decoder.get(), &format, bitmap->data(),
                                            static_cast<std::size_t>(bitmap->byteCount())));
            break;
        case JXL_DEC_FULL_IMAGE:
            return std::move(*bitmap);
        case JXL_DEC_SUCCESS:
            throw Failure{reason::damaged};
        default:
            break;
        }
    }
}

void finishAlpha(std::uint8_t* rgba, const Header& header) {
    const std::int64_t width = header.size().width;
    if (header.hasAlpha() && !header.info.alpha_premultiplied)
        return premultiply(rgba, width);
    for (std::int64_t x = 0; x < width; ++x, rgba += 4)
        for (int c = 0; c < 3; ++c)
            rgba[c] = std::min(rgba[c], rgba[3]);
}

class JpegXLReader final : public FormatReader {
public:
    explicit JpegXLReader(std::unique_ptr<ByteSource> source)
        : FormatReader(FileFormat::jpegXL, std::move(source)) {}

private:
    const Header& header() {
        if (!header_)
            header_ = readHeader(wholeFile(source()));
        return *header_;
    }

    std::int64_t readCount() override { return header().size().width > 0 ? 1 : 0; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        const Header& head = header();
        PropertyList::Dictionary extra;
        addExifProperties(head.exif, extra);
        PropertyList::Dictionary result =
            propertiesOf(Outline{.size = head.size(),
                                 .depth = static_cast<int>(head.info.bits_per_sample),
                                 .colorModel = head.info.num_color_channels == 1 ? "Gray" : "RGB",
                                 .hasAlpha = head.hasAlpha(),
                                 .orientation = head.info.orientation,
                                 .dpi = exifResolution(extra)});
        result.merge(extra);
        // The file's own turn is binding, whatever Exif says.
        if (findSection(result, "{TIFF}"))
            section(result, "{TIFF}")
                .insert_or_assign("Orientation", static_cast<int>(head.info.orientation));
        return result;
    }

    std::optional<int> readOrientation(std::int64_t) override { return header().info.orientation; }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        const Header& head = header();
        const PixelSize size = head.size();
        checkSize(size);
        if (size.width > maximumPixels / size.height)
            throw Failure{reason::tooLarge};
        Bitmap whole = decoded(wholeFile(source()), head);
        PictureSink sink(size, wantedSize(size, options));
        for (std::int64_t y = 0; y < size.height; ++y) {
            std::memcpy(sink.row(), whole.row(y), static_cast<std::size_t>(whole.bytesPerRow()));
            finishAlpha(sink.row(), head);
            sink.commit();
        }
        return sink.take();
    }

    Bitmap readThumbnail(std::int64_t) override { return thumbnailInExif(header().exif); }

    std::optional<Header> header_ = {};
};

} // namespace

extern "C" void zorvanMakeJpegXLReader(std::unique_ptr<ByteSource> source,
                                       std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<JpegXLReader>(std::move(source));
}

} // namespace zorvan::imageio
