#include <zorvan/platform/imageio/internal/CLibraryCall.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>

namespace zorvan::imageio {
namespace {

class Encoder {
public:
    Encoder() {
        info_.err = jpeg_std_error(&errors_);
        info_.client_data = this;
        errors_.error_exit = [](j_common_ptr info) {
            std::longjmp(static_cast<Encoder*>(info->client_data)->failure, 1);
        };
        errors_.emit_message = [](j_common_ptr, int) {};
        errors_.output_message = [](j_common_ptr) {};
    }
    ~Encoder() {
        jpeg_destroy_compress(&info_);
        std::free(bytes_);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    void start(const Frame& frame, const StoredProperties& properties, const Data& exif) {
        jpeg_create_compress(&info_);
        jpeg_mem_dest(&info_, &bytes_, &size_);
        info_.image_width = static_cast<JDIMENSION>(frame.bitmap->width());
        info_.image_height = static_cast<JDIMENSION>(frame.bitmap->height());
        info_.input_components = 4;
        info_.in_color_space = JCS_EXT_RGBX;
        jpeg_set_defaults(&info_);
        constexpr int usualQuality = 85;
        const int quality = std::max(1, percentOf(frame.quality, usualQuality));
        jpeg_set_quality(&info_, quality, TRUE);
        if (quality == 100)
            info_.comp_info[0].h_samp_factor = info_.comp_info[0].v_samp_factor = 1;
        if (properties.dpi) {
            info_.density_unit = 1;
            info_.X_density = static_cast<UINT16>(std::lround(properties.dpi->x));
            info_.Y_density = static_cast<UINT16>(std::lround(properties.dpi->y));
        }
        jpeg_start_compress(&info_, TRUE);
        if (!exif.empty())
            jpeg_write_marker(&info_, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                              static_cast<unsigned>(exif.size()));
    }

    void write(const std::uint8_t* row) {
        JSAMPROW rows = const_cast<JSAMPROW>(row);
        jpeg_write_scanlines(&info_, &rows, 1);
    }

    void finish() { jpeg_finish_compress(&info_); }

    Data result() const {
        const auto* first = reinterpret_cast<const std::byte*>(bytes_);
        return Data(first, first + size_);
    }

    std::jmp_buf failure;

private:
    jpeg_compress_struct info_ = {};
    jpeg_error_mgr errors_ = {};
    unsigned char* bytes_ = nullptr;
    unsigned long size_ = 0;
};

/// A JPEG has no alpha: the picture stands on white, as on paper.
void putOnWhite(const std::uint8_t* premultiplied, std::uint8_t* out, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i, premultiplied += 4, out += 4) {
        const int white = 255 - premultiplied[3];
        for (int c = 0; c < 3; ++c)
            out[c] = static_cast<std::uint8_t>(std::min(premultiplied[c] + white, 255));
        out[3] = 255;
    }
}

} // namespace

std::optional<Data> encodeJpeg(const Frame& frame) {
    const Bitmap& bitmap = *frame.bitmap;
    if (bitmap.width() > JPEG_MAX_DIMENSION || bitmap.height() > JPEG_MAX_DIMENSION)
        return std::nullopt;
    const StoredProperties properties = storedProperties(frame.properties);
    const Data block = exifBlock(properties);
    const Data exif = block.empty() ? block : withExifSignature(block);
    std::vector<std::uint8_t> onWhite(
        isOpaque(bitmap) ? 0 : static_cast<std::size_t>(bitmap.bytesPerRow()));
    Encoder encoder;
    const bool done = finishes(encoder.failure, [&] {
        encoder.start(frame, properties, exif);
        for (std::int64_t y = 0; y < bitmap.height(); ++y) {
            const std::uint8_t* row = bitmap.row(y);
            if (!onWhite.empty()) {
                putOnWhite(row, onWhite.data(), bitmap.width());
                row = onWhite.data();
            }
            encoder.write(row);
        }
        encoder.finish();
    });
    return done ? std::optional(encoder.result()) : std::nullopt;
}

} // namespace zorvan::imageio
