#include <zorvan/platform/graphics/AreaDownscaler.h>

#include <algorithm>
#include <cstring>

namespace zorvan {
namespace {

/// As many rows of 255 as an unsigned 16-bit sum holds.
constexpr int maximumWholeRows = 257;

using Pixel = float __attribute__((vector_size(16)));

Pixel pixelAt(const float* components, std::int64_t pixel) noexcept {
    Pixel result;
    std::memcpy(&result, components + pixel * 4, sizeof result);
    return result;
}

} // namespace

AreaDownscaler::AreaDownscaler(Bitmap& target, std::int64_t sourceWidth, std::int64_t sourceHeight)
    : AreaDownscaler(target, sourceWidth, sourceHeight, {0, target.height()}) {}

AreaDownscaler::AreaDownscaler(Bitmap& target, std::int64_t sourceWidth, std::int64_t sourceHeight,
                               Rows rows)
    : target_(target.data()), width_(target.width()), height_(target.height()),
      sourceWidth_(sourceWidth), sourceHeight_(sourceHeight), rows_(rows),
      sourceRow_(rows.first * sourceHeight / height_), targetRow_(rows.first),
      boundaries_(static_cast<std::size_t>(width_) + 1),
      wholeRows_(static_cast<std::size_t>(sourceWidth) * 4),
      sums_(static_cast<std::size_t>(sourceWidth) * 4) {
    for (std::int64_t x = 0; x <= width_; ++x) {
        const std::int64_t position = x * sourceWidth_;
        boundaries_[static_cast<std::size_t>(x)] = {
            position / width_, static_cast<float>(position % width_) / static_cast<float>(width_)};
    }
}

AreaDownscaler::Rows AreaDownscaler::sourceRows() const noexcept {
    return {rows_.first * sourceHeight_ / height_,
            (rows_.last * sourceHeight_ + height_ - 1) / height_};
}

// Vertical positions are counted in units of 1/height_ of a source row, where both the rows of the
// source and those of the result begin at whole numbers.
void AreaDownscaler::push(const std::uint8_t* row) noexcept {
    const std::int64_t begin = sourceRow_ * height_;
    const std::int64_t end = begin + height_;
    ++sourceRow_;
    if (targetRow_ >= rows_.last)
        return;
    const std::int64_t targetEnd = (targetRow_ + 1) * sourceHeight_;
    add(row, std::min(end, targetEnd) - std::max(begin, targetRow_ * sourceHeight_));
    if (end < targetEnd)
        return;
    finishRow();
    if (end > targetEnd && targetRow_ < rows_.last)
        add(row, end - targetEnd);
}

void AreaDownscaler::add(const std::uint8_t* row, std::int64_t overlap) noexcept {
    const std::size_t count = sums_.size();
    if (overlap == height_) {
        std::uint16_t* const sums = wholeRows_.data();
        for (std::size_t i = 0; i < count; ++i)
            sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
        if (++wholeRowCount_ == maximumWholeRows)
            foldWholeRows();
        return;
    }
    const float weight = static_cast<float>(overlap) / static_cast<float>(height_);
    float* const sums = sums_.data();
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += static_cast<float>(row[i]) * weight;
}

void AreaDownscaler::foldWholeRows() noexcept {
    if (wholeRowCount_ == 0)
        return;
    const std::uint16_t* const whole = wholeRows_.data();
    float* const sums = sums_.data();
    for (std::size_t i = 0; i < sums_.size(); ++i)
        sums[i] += static_cast<float>(whole[i]);
    std::fill(wholeRows_.begin(), wholeRows_.end(), std::uint16_t{0});
    wholeRowCount_ = 0;
}

void AreaDownscaler::finishRow() noexcept {
    foldWholeRows();
    const float* const sums = sums_.data();
    const float scale = static_cast<float>(
        static_cast<double>(width_) * static_cast<double>(height_) /
        (static_cast<double>(sourceWidth_) * static_cast<double>(sourceHeight_)));
    std::uint8_t* out = target_ + targetRow_ * width_ * 4;
    for (std::int64_t x = 0; x < width_; ++x) {
        const Boundary& left = boundaries_[static_cast<std::size_t>(x)];
        const Boundary& right = boundaries_[static_cast<std::size_t>(x) + 1];
        Pixel sum = pixelAt(sums, left.pixel) * (1 - left.before);
        for (std::int64_t pixel = left.pixel + 1; pixel < right.pixel; ++pixel)
            sum += pixelAt(sums, pixel);
        if (right.before > 0)
            sum += pixelAt(sums, right.pixel) * right.before;
        const Pixel mean = sum * scale + 0.5F;
        for (int component = 0; component < 4; ++component)
            *out++ = static_cast<std::uint8_t>(std::min(mean[component], 255.0F));
    }
    std::fill(sums_.begin(), sums_.end(), 0.0F);
    ++targetRow_;
}

void areaDownscale(const Bitmap& source, Bitmap& target, AreaDownscaler::Rows rows) {
    AreaDownscaler scaler(target, source.width(), source.height(), rows);
    const AreaDownscaler::Rows needed = scaler.sourceRows();
    for (std::int64_t y = needed.first; y < needed.last; ++y)
        scaler.push(source.row(y));
}

} // namespace zorvan
