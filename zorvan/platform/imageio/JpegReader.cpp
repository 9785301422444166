#include <zorvan/platform/imageio/internal/CLibraryCall.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/JpegHeader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

namespace zorvan::imageio {
namespace {

std::string_view colorModelOf(int componentCount) {
    return componentCount == 1 ? "Gray" : componentCount == 4 ? "CMYK" : "RGB";
}

std::optional<Outline::Resolution> resolutionOf(const JpegHeader::Jfif& jfif) {
    if (jfif.x == 0 || jfif.y == 0 || jfif.unit < 1 || jfif.unit > 2)
        return std::nullopt;
    const double perInch = jfif.unit == 2 ? 2.54 : 1;
    return Outline::Resolution{jfif.x * perInch, jfif.y * perInch};
}

PropertyList::Dictionary propertiesOf(const JpegHeader& header) {
    Outline outline = {.size = header.size,
                       .depth = header.depth,
                       .colorModel = colorModelOf(header.componentCount),
                       .orientation = exifOrientation(header.exif)};
    PropertyList::Dictionary sections;
    addPhotoshopProperties(header.photoshop, sections);
    if (header.jfif) {
        outline.dpi = resolutionOf(*header.jfif);
        sections.emplace("{JFIF}", PropertyList::Dictionary{
                                       {"JFIFVersion", PropertyList::Array{header.jfif->major,
                                                                           header.jfif->minor}},
                                       {"DensityUnit", header.jfif->unit},
                                       {"XDensity", header.jfif->x},
                                       {"YDensity", header.jfif->y},
                                       {"IsProgressive", header.progressive},
                                   });
    }
    return propertiesOf(outline, header.exif, std::move(sections));
}

/// libjpeg reading from a source of ours, with its reports kept to this call.
class Decoder {
public:
    explicit Decoder(ByteSource& source) : bytes_(source), buffer_(32'768) {
        info_.err = jpeg_std_error(&errors_);
        errors_.error_exit = [](j_common_ptr info) { std::longjmp(of(info).failure, 1); };
        errors_.emit_message = [](j_common_ptr info, int level) {
            Decoder& decoder = of(info);
            if (level < 0 && info->err->msg_code == JWRN_HIT_MARKER)
                decoder.ranOutOfData_ = true;
        };
        errors_.output_message = [](j_common_ptr) {};
        info_.client_data = this;
        run([&] { jpeg_create_decompress(&info_); });
        input_.init_source = [](j_decompress_ptr) {};
        input_.fill_input_buffer = [](j_decompress_ptr info) {
            of(reinterpret_cast<j_common_ptr>(info)).fill();
            return static_cast<boolean>(TRUE);
        };
        input_.skip_input_data = [](j_decompress_ptr info, long count) {
            of(reinterpret_cast<j_common_ptr>(info)).skip(count);
        };
        input_.resync_to_restart = jpeg_resync_to_restart;
        input_.term_source = [](j_decompress_ptr) {};
        info_.src = &input_;
        progress_.progress_monitor = [](j_common_ptr info) { of(info).checkScans(); };
        info_.progress = &progress_;
    }
    ~Decoder() { jpeg_destroy_decompress(&info_); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    jpeg_decompress_struct& info() noexcept { return info_; }

    template <class Work>
    void run(const Work& work) {
        if (!finishes(failure, work))
            throw Failure{failureReason()};
    }

    /// Whether the data ended before the picture did. A file whose every pixel is there passes,
    /// even without the end marker that some cameras forget; in a file of several scans only the
    /// marker tells that the last one is there.
    bool wasCutShort() noexcept {
        return reachedEnd_ && (ranOutOfData_ || jpeg_has_multiple_scans(&info_));
    }

    std::jmp_buf failure;

private:
    static Decoder& of(j_common_ptr info) { return *static_cast<Decoder*>(info->client_data); }

    const char* failureReason() const noexcept {
        switch (errors_.msg_code) {
        case JERR_OUT_OF_MEMORY:
            return reason::noMemory;
        case JERR_ARITH_NOTIMPL:
        case JERR_BAD_PRECISION:
        case JERR_SOF_UNSUPPORTED:
        case JERR_CONVERSION_NOTIMPL:
            return reason::unsupported;
        default:
            return reachedEnd_ ? reason::cutShort : reason::damaged;
        }
    }

    void fill() noexcept {
        std::size_t count = bytes_.read(position_, buffer_.data(), buffer_.size());
        position_ += count;
        if (count == 0) {
            reachedEnd_ = true;
            buffer_[0] = 0xFF;
            buffer_[1] = JPEG_EOI;
            count = 2;
        }
        input_.next_input_byte = buffer_.data();
        input_.bytes_in_buffer = count;
    }

    void skip(long count) noexcept {
        if (count <= 0)
            return;
        const auto wanted = static_cast<std::size_t>(count);
        if (wanted <= input_.bytes_in_buffer) {
            input_.next_input_byte += wanted;
            input_.bytes_in_buffer -= wanted;
            return;
        }
        position_ += wanted - input_.bytes_in_buffer;
        input_.bytes_in_buffer = 0;
    }

    /// A scan costs a pass over the picture however little it holds, so a small file could keep us
    /// busy for hours.
    void checkScans() {
        constexpr int maximumScans = 200;
        constexpr std::int64_t mostPixels = std::int64_t{1} << 33; // of all scans
        const std::int64_t area = std::int64_t{info_.image_width} * info_.image_height;
        if (info_.input_scan_number > maximumScans ||
            area > mostPixels / std::max(1, info_.input_scan_number))
            std::longjmp(failure, 1);
    }

    ByteSource& bytes_;
    std::vector<JOCTET> buffer_;
    std::uint64_t position_ = 0;
    bool reachedEnd_ = false;
    bool ranOutOfData_ = false;
    jpeg_decompress_struct info_ = {};
    jpeg_error_mgr errors_ = {};
    jpeg_source_mgr input_ = {};
    jpeg_progress_mgr progress_ = {};
};

/// Sets the codec to the smallest of its reduced sizes that is no smaller than the target. The
/// codec rounds a reduced size up, so it is the scale that is compared: seven pixels at seven
/// eighths come as seven pixels too.
void chooseScale(jpeg_decompress_struct& info, PixelSize stored, PixelSize target) {
    constexpr unsigned denominator = 8;
    // Small pictures are quick in full, and their last blocks, filled up, would show.
    constexpr std::int64_t small = 256;
    const auto suffices = [&](unsigned numerator) {
        return stored.width * numerator >= target.width * denominator &&
               stored.height * numerator >= target.height * denominator;
    };
    info.scale_denom = denominator;
    info.scale_num = std::max(stored.width, stored.height) <= small ? denominator : 1;
    while (!suffices(info.scale_num))
        ++info.scale_num;
}

class JpegReader final : public HeaderReader<JpegHeader> {
public:
    using HeaderReader::HeaderReader;

private:
    JpegHeader readHeader() override { return readJpegHeader(source()); }

    Bytes exif() override { return header().exif; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(header());
    }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        Decoder decoder(source());
        jpeg_decompress_struct& info = decoder.info();
        decoder.run([&] { jpeg_read_header(&info, TRUE); });
        const PixelSize stored = {info.image_width, info.image_height};
        checkSize(stored);
        const PixelSize target = wantedSize(stored, options);
        // The codec makes up what is missing. Of what is there, a bit says 64 pixels, or 128 when
        // each colour is coarse in another direction. In several scans the picture has to be whole.
        checkProportion(jpeg_has_multiple_scans(&info) != 0 ? stored : target,
                        usualPixels(source().size()));
        const bool inks = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
        info.out_color_space = inks ? JCS_CMYK : JCS_EXT_RGBA;
        chooseScale(info, stored, target);
        decoder.run([&] { jpeg_start_decompress(&info); });
        PictureSink sink({info.output_width, info.output_height}, target);
        std::vector<std::uint8_t> inkRow(inks ? std::size_t{4} * info.output_width : 0);
        decoder.run([&] { readRows(info, sink, inkRow); });
        if (decoder.wasCutShort())
            throw Failure{reason::cutShort};
        return sink.take();
    }

    static void readRows(jpeg_decompress_struct& info, PictureSink& sink,
                         std::vector<std::uint8_t>& inkRow) {
        // Adobe's programs store inks inverted, 255 meaning none, and mark their files.
        const std::uint8_t inversion = info.saw_Adobe_marker ? 0xFF : 0;
        while (info.output_scanline < info.output_height) {
            JSAMPROW row = inkRow.empty() ? sink.row() : inkRow.data();
            jpeg_read_scanlines(&info, &row, 1);
            if (!inkRow.empty()) {
                for (std::uint8_t& ink : inkRow)
                    ink ^= inversion;
                inkToRgba(inkRow.data(), sink.row(), info.output_width);
            }
            sink.commit();
        }
    }
};

} // namespace

Bitmap thumbnailInExif(Bytes exif) {
    Data bytes = exifThumbnail(exif);
    if (bytes.empty())
        throw Failure{reason::noThumbnail};
    JpegReader reader(FileFormat::jpeg, sourceOver(std::move(bytes)));
    std::optional<Bitmap> thumbnail = reader.decode(0, {});
    if (!thumbnail)
        throw Failure{reason::damaged};
    return std::move(*thumbnail);
}

void makeJpegReader(std::unique_ptr<ByteSource> source, FileFormat format,
                    std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<JpegReader>(format, std::move(source));
}

} // namespace zorvan::imageio
