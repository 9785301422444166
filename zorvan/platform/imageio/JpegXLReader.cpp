#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/timeOf.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>
#include <chrono>
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

/// The codec is given the file in pieces: between two of them the time is looked at, since a file
/// may hold layers without number, all under one picture.
class Decoder {
public:
    Decoder(const Data& file, int events, PixelSize size = {})
        : decoder_(JxlDecoderCreate(nullptr)), file_(file),
          timeToEnd_(ownTime() + std::chrono::seconds(2) +
                     std::chrono::microseconds(2) * size.width * size.height) {
        if (!decoder_)
            throw Failure{reason::noMemory};
        check(JxlDecoderSubscribeEvents(get(), events));
        check(JxlDecoderSetKeepOrientation(get(), JXL_TRUE));
        check(JxlDecoderSetDecompressBoxes(get(), JXL_TRUE));
    }

    JxlDecoder* get() const noexcept { return decoder_.get(); }

    static void check(JxlDecoderStatus status) {
        if (status != JXL_DEC_SUCCESS)
            throw Failure{reason::damaged};
    }

    /// The next event. Throws when the file is at fault.
    JxlDecoderStatus next() {
        for (;;) {
            const JxlDecoderStatus status = JxlDecoderProcessInput(get());
            if (status == JXL_DEC_ERROR)
                throw Failure{reason::damaged};
            if (status != JXL_DEC_NEED_MORE_INPUT)
                return status;
            if (given_ == file_.size())
                throw Failure{reason::cutShort};
            if (ownTime() > timeToEnd_)
                throw Failure{reason::tooLarge};
            giveMore();
        }
    }

private:
    static std::chrono::nanoseconds ownTime() noexcept {
        return internal::timeOf(CLOCK_THREAD_CPUTIME_ID);
    }

    /// The next piece, behind what is left of the one before: the more is left, the larger.
    void giveMore() {
        constexpr std::size_t least = 4 << 10;
        const std::size_t left = JxlDecoderReleaseInput(get());
        const std::size_t start = given_ - left;
        given_ += std::min(std::max(least, left), file_.size() - given_);
        check(JxlDecoderSetInput(get(), reinterpret_cast<const std::uint8_t*>(file_.data()) + start,
                                 given_ - start));
        if (given_ == file_.size())
            JxlDecoderCloseInput(get());
    }

    std::unique_ptr<JxlDecoder, Release<JxlDecoderDestroy>> decoder_;
    const Data& file_;
    std::size_t given_ = 0;
    const std::chrono::nanoseconds timeToEnd_;
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

    const Data& bytes() const noexcept { return bytes_; }

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

Header headerOf(const Data& file) {
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
    const Bytes exif = exifInBox(box.bytes());
    header.exif.assign(exif.begin(), exif.end());
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
    Bitmap bitmap = bitmapOf(header.size());
    Decoder decoder(file, JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE, header.size());
    for (;;) {
        switch (decoder.next()) {
        case JXL_DEC_COLOR_ENCODING:
            if (!header.info.uses_original_profile && header.info.num_color_channels == 3)
                askForScreenColours(decoder);
            break;
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            Decoder::check(
                JxlDecoderSetImageOutBuffer(decoder.get(), &format, bitmap.data(),
                                            static_cast<std::size_t>(bitmap.byteCount())));
            break;
        case JXL_DEC_FULL_IMAGE:
            return bitmap;
        case JXL_DEC_SUCCESS:
            throw Failure{reason::damaged};
        default:
            break;
        }
    }
}

class JpegXLReader final : public HeaderReader<Header> {
public:
    using HeaderReader::HeaderReader;

private:
    Header readHeader() override { return headerOf(wholeFile(source())); }

    Bytes exif() override { return header().exif; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        const Header& head = header();
        return propertiesOf({.size = head.size(),
                             .depth = static_cast<int>(head.info.bits_per_sample),
                             .colorModel = head.info.num_color_channels == 1 ? "Gray" : "RGB",
                             .hasAlpha = head.hasAlpha(),
                             .orientation = head.info.orientation},
                            exif());
    }

    std::optional<int> readOrientation(std::int64_t) override { return header().info.orientation; }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        const Header& head = header();
        const PixelSize size = head.size();
        checkProportion(size, usualPixels(source().size()));
        if (size.width > maximumPixels / size.height)
            throw Failure{reason::tooLarge};
        Bitmap whole = decoded(wholeFile(source()), head);
        finishAlpha(whole.data(), size.width * size.height,
                    !head.hasAlpha() || head.info.alpha_premultiplied);
        PictureSink sink(size, wantedSize(size, options));
        sink.put(whole);
        return sink.take();
    }
};

} // namespace

extern "C" void zorvanMakeJpegXLReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                       std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<JpegXLReader>(format, std::move(source));
}

} // namespace zorvan::imageio
