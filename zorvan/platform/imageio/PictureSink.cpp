#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <utility>

namespace zorvan::imageio {
namespace {

std::int64_t scaledSide(std::int64_t side, std::int64_t to, std::int64_t from) noexcept {
    return std::max<std::int64_t>(1, (side * to * 2 + from) / (from * 2));
}

} // namespace

void checkSize(PixelSize size) {
    if (size.width < 1 || size.height < 1)
        throw Failure{reason::damaged};
    if (size.width > maximumSide || size.height > maximumSide ||
        size.width > Bitmap::maximumPixelCount / size.height)
        throw Failure{reason::tooLarge};
}

bool isOutOfProportion(PixelSize size, std::int64_t mostPixels) noexcept {
    constexpr std::int64_t alwaysFit = std::int64_t{1} << 26;
    return size.width > std::max(mostPixels, alwaysFit) / size.height;
}

void checkProportion(PixelSize size, std::int64_t mostPixels) {
    checkSize(size);
    if (isOutOfProportion(size, mostPixels))
        throw Failure{reason::tooLarge};
}

Bitmap bitmapOf(PixelSize size) {
    std::optional<Bitmap> bitmap = Bitmap::make(size.width, size.height);
    if (!bitmap)
        throw Failure{reason::noMemory};
    return std::move(*bitmap);
}

PixelSize wantedSize(PixelSize stored, const DecodeOptions& options) noexcept {
    const std::int64_t longer = std::max(stored.width, stored.height);
    const std::int64_t limit = options.maximumPixelSize;
    if (limit <= 0 || longer <= limit)
        return stored;
    return {scaledSide(stored.width, limit, longer), scaledSide(stored.height, limit, longer)};
}

std::uint8_t* PictureSink::row() {
    if (!bitmap_)
        begin();
    return scaler_ ? buffer_.data() : bitmap_->row(next_);
}

void PictureSink::begin() {
    bitmap_ = bitmapOf(target_);
    if (source_ == target_)
        return;
    scaler_.emplace(*bitmap_, source_.width, source_.height);
    buffer_.resize(static_cast<std::size_t>(source_.width) * 4);
}

void PictureSink::commit() noexcept {
    ++next_;
    if (scaler_)
        scaler_->push(buffer_.data());
}

void PictureSink::put(const Bitmap& picture) {
    for (std::int64_t y = 0; y < picture.height(); ++y) {
        std::copy_n(picture.row(y), picture.bytesPerRow(), row());
        commit();
    }
}

} // namespace zorvan::imageio
