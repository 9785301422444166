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

void checkCanvas(PixelSize canvas, std::int64_t mostPixels) {
    constexpr std::int64_t mostEmptyPixels = std::int64_t{1} << 24; // whatever the file says
    checkSize(canvas);
    if (canvas.width > std::max(mostPixels, mostEmptyPixels) / canvas.height)
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

PictureSink::PictureSink(PixelSize source, PixelSize target) : bitmap_(bitmapOf(target)) {
    if (source == target)
        return;
    scaler_.emplace(bitmap_, source.width, source.height);
    buffer_.resize(static_cast<std::size_t>(source.width) * 4);
}

std::uint8_t* PictureSink::row() noexcept { return scaler_ ? buffer_.data() : bitmap_.row(next_); }

void PictureSink::commit() noexcept {
    ++next_;
    if (scaler_)
        scaler_->push(buffer_.data());
}

void PictureSink::put(const Bitmap& picture) noexcept {
    for (std::int64_t y = 0; y < picture.height(); ++y) {
        std::copy_n(picture.row(y), picture.bytesPerRow(), row());
        commit();
    }
}

} // namespace zorvan::imageio
