#include "Support.h"
#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>
#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace zorvan::imageio {

using zorvan::internal::valueUnder;

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

void expectPixels(const Bitmap& bitmap,
                  const std::function<Pixel(std::int64_t, std::int64_t)>& wanted) {
    for (std::int64_t y = 0; y < bitmap.height(); ++y)
        for (std::int64_t x = 0; x < bitmap.width(); ++x)
            for (std::size_t c = 0; c < 4; ++c)
                ASSERT_NEAR(componentsAt(bitmap, x, y)[c], wanted(x, y)[c], 1) << x << ',' << y;
}

Data sample(const std::string& name) {
    return bytesOf(::text(std::string(ZORVAN_IMAGE_SAMPLES "/") + name));
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

std::string errorOf(const Data& bytes, DecodeOptions options) {
    const auto reader = ImageReader::open(bytes);
    const bool isPicture = reader->decode(0, options).has_value();
    EXPECT_EQ(reader->error().empty(), isPicture);
    return reader->error();
}

std::string errorWithin(std::uint64_t more, const Data& bytes) {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit before = {};
    getrlimit(RLIMIT_AS, &before);
    const rlimit limit = {pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + more,
                          before.rlim_max};
    setrlimit(RLIMIT_AS, &limit);
    const std::string error = errorOf(bytes);
    setrlimit(RLIMIT_AS, &before);
    return error;
}

void readDamaged(const Data& bytes, int rounds) {
    std::mt19937 random(7);
    for (int round = 0; round < rounds; ++round) {
        Data damaged = bytes;
        const std::size_t end =
            round % 2 == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 400);
        for (unsigned count = 1 + random() % 8; count > 0; --count)
            damaged[random() % end] = static_cast<std::byte>(random());
        const auto reader = ImageReader::open(damaged);
        reader->properties(0);
        reader->decode(0, {.maximumPixelSize = 20});
        reader->embeddedThumbnail(0);
    }
}

double number(const PropertyList::Dictionary& properties, std::string_view key) {
    const auto* number = valueUnder<NSNumber>(properties, key);
    return number ? number->doubleValue() : -1;
}

double number(const PropertyList::Dictionary& properties, std::string_view section,
              std::string_view key) {
    const auto* inner = valueUnder<PropertyList::Dictionary>(properties, section);
    return inner ? number(*inner, key) : -1;
}

std::string text(const PropertyList::Dictionary& properties, std::string_view section,
                 std::string_view key) {
    const auto* inner = valueUnder<PropertyList::Dictionary>(properties, section);
    const auto* text = inner ? valueUnder<std::string>(*inner, key) : nullptr;
    return text ? *text : "(none)";
}

Data withSegment(Data jpeg, int marker, Bytes content) {
    const std::size_t length = content.size() + 2;
    Data segment = {std::byte{0xFF}, static_cast<std::byte>(marker),
                    static_cast<std::byte>(length >> 8), static_cast<std::byte>(length)};
    segment.insert(segment.end(), content.begin(), content.end());
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
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
