#include <zorvan/platform/graphics/VectorPicture.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <algorithm>
#include <cmath>

namespace zorvan::imageio {
namespace {

class SvgReader final : public FormatReader {
public:
    explicit SvgReader(std::unique_ptr<ByteSource> source)
        : FormatReader(FileFormat::svg, std::move(source)) {}

private:
    const VectorPicture& picture() {
        if (picture_)
            return *picture_;
        if (source().size() > VectorPicture::maximumByteCount)
            throw Failure{reason::tooLarge};
        picture_ = VectorPicture::create(source().bytes(0, source().size()));
        if (!picture_)
            throw Failure{VectorPicture::isSupported() ? reason::damaged : reason::noDecoder};
        return *picture_;
    }

    /// A side of a picture that asks for less than half a pixel is one.
    PixelSize size() {
        const auto side = [](double length) {
            const double limit = static_cast<double>(maximumSide) + 1;
            return std::llround(std::clamp(length, 1.0, limit));
        };
        return {side(picture().size().width), side(picture().size().height)};
    }

    std::int64_t readCount() override { return size().width > 0 ? 1 : 0; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(Outline{.size = size(), .hasAlpha = true});
    }

    std::optional<int> readOrientation(std::int64_t) override { return std::nullopt; }

    /// Drawn at the size that is wanted, so the picture's own need not be one of a bitmap.
    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        const PixelSize wanted = wantedSize(size(), options);
        checkSize(wanted);
        std::optional<Bitmap> drawn = picture().drawn(wanted.width, wanted.height);
        if (!drawn)
            throw Failure{reason::tooLarge};
        return std::move(*drawn);
    }

    Bitmap readThumbnail(std::int64_t) override { throw Failure{reason::noThumbnail}; }

    std::shared_ptr<const VectorPicture> picture_ = {};
};

} // namespace

std::unique_ptr<ImageReader> makeSvgReader(std::unique_ptr<ByteSource> source) {
    return std::make_unique<SvgReader>(std::move(source));
}

} // namespace zorvan::imageio
