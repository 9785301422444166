#include <zorvan/platform/graphics/VectorPicture.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <algorithm>
#include <cmath>

namespace zorvan::imageio {
namespace {

using Picture = std::shared_ptr<const VectorPicture>;

class SvgReader final : public HeaderReader<Picture> {
public:
    using HeaderReader::HeaderReader;

private:
    Picture readHeader() override {
        if (source().size() > VectorPicture::maximumByteCount)
            throw Failure{reason::tooLarge};
        Picture picture = VectorPicture::create(source().bytes(0, source().size()));
        if (!picture)
            throw Failure{VectorPicture::isSupported() ? reason::damaged : reason::noDecoder};
        return picture;
    }

    /// A side of a picture that asks for less than half a pixel is one.
    PixelSize size() {
        const auto side = [](double length) {
            const double limit = static_cast<double>(maximumSide) + 1;
            return std::llround(std::clamp(length, 1.0, limit));
        };
        return {side(header()->size().width), side(header()->size().height)};
    }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(Outline{.size = size(), .hasAlpha = true});
    }

    /// Drawn at the size that is wanted, so the picture's own need not be one of a bitmap.
    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        const PixelSize wanted = wantedSize(size(), options);
        checkProportion(wanted, usualPixels(source().size()));
        std::optional<Bitmap> drawn = header()->drawn(wanted.width, wanted.height);
        if (!drawn)
            throw Failure{reason::tooLarge};
        return std::move(*drawn);
    }
};

} // namespace

void makeSvgReader(std::unique_ptr<ByteSource> source, FileFormat format,
                   std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<SvgReader>(format, std::move(source));
}

} // namespace zorvan::imageio
