// Stretched and slanted redraws of a 12-megapixel picture beside libvips, which runs on as many
// threads, and how far each is from the exact area average.

#include "MediaBench.h"

#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGImage.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <vips/vips.h>

namespace {

using namespace mediabench;
using namespace zorvan;

constexpr std::int64_t width = 4000, height = 3000;
constexpr std::int64_t smallWidth = 1155, smallHeight = 866;

/// Smooth shapes under noise, as in a photo; opaque, since libvips does not premultiply.
CGImage::Pointer photo() {
    Bitmap bitmap = Bitmap::make(width, height).value();
    std::minstd_rand random(7);
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c) {
                const double wave = std::sin(static_cast<double>(x * (c + 2)) / 37) *
                                    std::cos(static_cast<double>(y) / 29);
                const double value = 128 + 90 * wave + static_cast<double>(random() % 64) - 32;
                bitmap.row(y)[x * 4 + c] = c == 3 ? 255 : static_cast<std::uint8_t>(value);
            }
    return CGImage::create(std::move(bitmap));
}

struct FreeWithGLib {
    void operator()(void* memory) const noexcept { g_free(memory); }
};
using Bytes = std::unique_ptr<std::uint8_t, FreeWithGLib>;

Bytes resizedByVips(const CGImage& image) {
    VipsImage* const in = vips_image_new_from_memory(
        image.uint8Data(), static_cast<std::size_t>(image.bitmap().byteCount()),
        static_cast<int>(width), static_cast<int>(height), 4, VIPS_FORMAT_UCHAR);
    VipsImage* out = nullptr;
    const double scaleX = static_cast<double>(smallWidth) / static_cast<double>(width);
    const double scaleY = static_cast<double>(smallHeight) / static_cast<double>(height);
    vips_resize(in, &out, scaleX, "vscale", scaleY, nullptr);
    std::size_t size = 0;
    Bytes bytes(static_cast<std::uint8_t*>(vips_image_write_to_memory(out, &size)));
    if (size != static_cast<std::size_t>(smallWidth * smallHeight * 4))
        std::abort();
    g_object_unref(out);
    g_object_unref(in);
    return bytes;
}

Bytes rotatedByVips(const CGImage& image) {
    VipsImage* const in = vips_image_new_from_memory(
        image.uint8Data(), static_cast<std::size_t>(image.bitmap().byteCount()),
        static_cast<int>(width), static_cast<int>(height), 4, VIPS_FORMAT_UCHAR);
    VipsImage* out = nullptr;
    vips_rotate(in, &out, 10.0, nullptr);
    std::size_t size = 0;
    Bytes bytes(static_cast<std::uint8_t*>(vips_image_write_to_memory(out, &size)));
    g_object_unref(out);
    g_object_unref(in);
    return bytes;
}

/// The exact area average, in 64-bit reals: first along the rows, then down the columns.
std::vector<double> areaAverage(const CGImage& image) {
    const auto share = [](std::int64_t i, std::int64_t s, std::int64_t from, std::int64_t to) {
        const double scale = static_cast<double>(from) / static_cast<double>(to);
        const double left = static_cast<double>(i) * scale, right = left + scale;
        const auto p = static_cast<double>(s);
        return std::max(0.0, std::min(p + 1, right) - std::max(p, left)) / scale;
    };
    std::vector<double> rows(static_cast<std::size_t>(smallWidth * height * 4));
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < smallWidth; ++x)
            for (std::int64_t s = x * width / smallWidth;
                 s < width && s <= (x + 1) * width / smallWidth; ++s)
                for (std::int64_t c = 0; c < 4; ++c)
                    rows[static_cast<std::size_t>((y * smallWidth + x) * 4 + c)] +=
                        share(x, s, width, smallWidth) * image.uint8Data()[image.offset(s, y) + c];
    std::vector<double> result(static_cast<std::size_t>(smallWidth * smallHeight * 4));
    for (std::int64_t y = 0; y < smallHeight; ++y)
        for (std::int64_t s = y * height / smallHeight;
             s < height && s <= (y + 1) * height / smallHeight; ++s)
            for (std::int64_t i = 0; i < smallWidth * 4; ++i)
                result[static_cast<std::size_t>(y * smallWidth * 4 + i)] +=
                    share(y, s, height, smallHeight) *
                    rows[static_cast<std::size_t>(s * smallWidth * 4 + i)];
    return result;
}

double meanError(const std::uint8_t* bytes, const std::vector<double>& exact) {
    double sum = 0;
    for (std::size_t i = 0; i < exact.size(); ++i)
        sum += std::abs(bytes[i] - exact[i]);
    return sum / static_cast<double>(exact.size());
}

void fillByTwoThreads(std::uint8_t* pixels, std::int64_t columns, std::int64_t rows) {
    const auto fill = [pixels, columns](std::int64_t first, std::int64_t last) {
        for (std::int64_t y = first; y < last; ++y)
            for (std::int64_t x = 0; x < columns; ++x) {
                std::uint8_t* const pixel = pixels + y * columns * 4 + x * 4;
                pixel[0] = static_cast<std::uint8_t>(x);
                pixel[1] = static_cast<std::uint8_t>(y);
                pixel[2] = static_cast<std::uint8_t>(x ^ y);
                pixel[3] = 255;
            }
    };
    std::thread other(fill, 0, rows / 2);
    fill(rows / 2, rows);
    other.join();
}

void compareFill(const char* name, std::int64_t columns, std::int64_t rows) {
    compare(
        name,
        [=] {
            keep(CGContext::rgba(
                     columns, rows,
                     [](CGContext& context, std::uint8_t* data, std::int64_t x, std::int64_t y) {
                         std::uint8_t* const pixel = data + context.offset(x, y);
                         pixel[0] = static_cast<std::uint8_t>(x);
                         pixel[1] = static_cast<std::uint8_t>(y);
                         pixel[2] = static_cast<std::uint8_t>(x ^ y);
                         pixel[3] = 255;
                     })
                     .get());
        },
        "two threads by hand",
        [=] {
            Bitmap filled = Bitmap::make(columns, rows).value();
            fillByTwoThreads(filled.data(), columns, rows);
            keep(filled.data());
        });
}

} // namespace

int main(int, char** arguments) {
    VIPS_INIT(arguments[0]);
    vips_cache_set_max(0); // or it would answer from its cache
    const CGImage::Pointer image = photo();

    const CGSize small(static_cast<double>(smallWidth), static_cast<double>(smallHeight));
    const std::vector<double> exact = areaAverage(*image);
    std::printf("mean error of 12 MP to 1 MP: ours %.3f levels, libvips %.3f\n",
                meanError(image->resizing(small)->uint8Data(), exact),
                meanError(resizedByVips(*image).get(), exact));
    compare(
        "resize 12 MP to 1 MP", [&] { keep(image->resizing(small).get()); }, "libvips resize",
        [&] { keep(resizedByVips(*image).get()); });

    const CGAffineTransform turn({.rotationAngle = 0.17});
    compare(
        "turn 12 MP by 10 degrees", [&] { keep(image->applying(turn).get()); }, "libvips rotate",
        [&] { keep(rotatedByVips(*image).get()); });

    compareFill("fill 4 MP", 2304, 1728);
    compareFill("fill 12 MP", width, height);
    vips_shutdown();
}
