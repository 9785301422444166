#include "Support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

namespace zorvan::imageio {

Bitmap pattern(std::int64_t width, std::int64_t height, bool alpha) {
    std::optional<Bitmap> bitmap = Bitmap::make(width, height);
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            std::uint8_t* pixel = bitmap->row(y) + x * 4;
            const std::int64_t a = alpha ? 255 - 255 * x / width : 255;
            pixel[0] = static_cast<std::uint8_t>((255 * x / width) * a / 255);
            pixel[1] = static_cast<std::uint8_t>((255 * y / height) * a / 255);
            pixel[2] =
                static_cast<std::uint8_t>((255 - 127 * (x + y) / (width + height)) * a / 255);
            pixel[3] = static_cast<std::uint8_t>(a);
        }
    return std::move(*bitmap);
}

Pixel pixelAt(const Bitmap& bitmap, std::int64_t x, std::int64_t y) {
    const std::uint8_t* pixel = bitmap.row(y) + x * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

void expectPixels(const Bitmap& bitmap,
                  const std::function<Pixel(std::int64_t, std::int64_t)>& wanted) {
    for (std::int64_t y = 0; y < bitmap.height(); ++y)
        for (std::int64_t x = 0; x < bitmap.width(); ++x)
            for (std::size_t c = 0; c < 4; ++c)
                ASSERT_NEAR(pixelAt(bitmap, x, y)[c], wanted(x, y)[c], 1) << x << ',' << y;
}

Difference difference(const Bitmap& a, const Bitmap& b) {
    if (a.width() != b.width() || a.height() != b.height())
        return {std::numeric_limits<double>::infinity(), 256};
    Difference result = {0, 0};
    for (std::int64_t i = 0; i < a.byteCount(); ++i) {
        const int distance = std::abs(a.data()[i] - b.data()[i]);
        result.mean += distance;
        result.largest = std::max(result.largest, distance);
    }
    result.mean /= static_cast<double>(a.byteCount());
    return result;
}

Data encoded(FileFormat format, const Bitmap& bitmap, PropertyList::Dictionary properties) {
    const Frame frame = {.bitmap = &bitmap, .properties = std::move(properties)};
    std::optional<Data> bytes = encode(format, {&frame, 1});
    EXPECT_TRUE(bytes) << typeIdentifier(format);
    return bytes.value_or(Data());
}

Bitmap decoded(const Data& bytes, DecodeOptions options) {
    const auto reader = ImageReader::open(bytes);
    std::optional<Bitmap> bitmap = reader->decode(0, options);
    EXPECT_TRUE(bitmap) << reader->error();
    return bitmap ? std::move(*bitmap) : std::move(*Bitmap::make(1, 1));
}

PropertyList::Dictionary propertiesOf(const Data& bytes) {
    const auto reader = ImageReader::open(bytes);
    auto properties = reader->properties(0);
    EXPECT_TRUE(properties) << reader->error();
    return properties.value_or(PropertyList::Dictionary());
}

namespace {

const PropertyList* find(const PropertyList::Dictionary& properties, std::string_view key) {
    const auto found = properties.find(key);
    return found == properties.end() ? nullptr : &found->second;
}

const PropertyList* find(const PropertyList::Dictionary& properties, std::string_view section,
                         std::string_view key) {
    const PropertyList* inner = find(properties, section);
    const auto* entries = inner ? inner->as<PropertyList::Dictionary>() : nullptr;
    return entries ? find(*entries, key) : nullptr;
}

double numberIn(const PropertyList* value) {
    const NSNumber* number = value ? value->as<NSNumber>() : nullptr;
    return number ? number->doubleValue() : -1;
}

} // namespace

double number(const PropertyList::Dictionary& properties, std::string_view key) {
    return numberIn(find(properties, key));
}

double number(const PropertyList::Dictionary& properties, std::string_view section,
              std::string_view key) {
    return numberIn(find(properties, section, key));
}

std::string text(const PropertyList::Dictionary& properties, std::string_view section,
                 std::string_view key) {
    const PropertyList* value = find(properties, section, key);
    const std::string* text = value ? value->as<std::string>() : nullptr;
    return text ? *text : "(none)";
}

Data bytesOf(std::string_view text) {
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return Data(first, first + text.size());
}

std::size_t positionOf(const Data& bytes, std::string_view text) {
    const Data wanted = bytesOf(text);
    const auto found = std::search(bytes.begin(), bytes.end(), wanted.begin(), wanted.end());
    EXPECT_NE(found, bytes.end()) << text;
    return static_cast<std::size_t>(found - bytes.begin());
}

Bitmap referenceDownscale(const Bitmap& source, std::int64_t width, std::int64_t height) {
    std::optional<Bitmap> result = Bitmap::make(width, height, source.layout());
    const double sx = static_cast<double>(source.width()) / static_cast<double>(width);
    const double sy = static_cast<double>(source.height()) / static_cast<double>(height);
    const auto overlap = [](double a0, double a1, double b) {
        return std::max(0.0, std::min(a1, b + 1) - std::max(a0, b));
    };
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c) {
                const double top = static_cast<double>(y) * sy;
                const double left = static_cast<double>(x) * sx;
                double sum = 0;
                for (auto v = static_cast<std::int64_t>(top);
                     v < source.height() && static_cast<double>(v) < top + sy; ++v)
                    for (auto u = static_cast<std::int64_t>(left);
                         u < source.width() && static_cast<double>(u) < left + sx; ++u)
                        sum += source.row(v)[u * 4 + c] *
                               overlap(top, top + sy, static_cast<double>(v)) *
                               overlap(left, left + sx, static_cast<double>(u));
                result->row(y)[x * 4 + c] =
                    static_cast<std::uint8_t>(std::min(255.0, sum / (sx * sy) + 0.5));
            }
    return std::move(*result);
}

} // namespace zorvan::imageio
