// Turns, mirrors, crops and copies of a 12-megapixel picture, each beside a memcpy of the same
// bytes that ran right before it. Both sides are warm: the peer copies between two buffers that
// stay, and ours takes the storage of the previous result. "fresh" rows compare with malloc, memcpy
// and free.

#include "MediaBench.h"

#include <zorvan/platform/graphics/ExactTransforms.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include <opencv2/core.hpp>

namespace {

using namespace mediabench;
using namespace zorvan;

constexpr std::int64_t width = 4000;
constexpr std::int64_t height = 3000;
} // namespace

int main() {
    Bitmap source = Bitmap::make(width, height).value();
    for (std::int64_t i = 0; i < source.byteCount(); ++i)
        source.data()[i] = static_cast<std::uint8_t>(i * 7 / 3);
    const auto byteCount = static_cast<std::size_t>(source.byteCount());
    const std::unique_ptr<std::uint8_t[]> target(new std::uint8_t[byteCount]);

    const auto copyBytes = [&](std::size_t count) {
        return [&, count] {
            std::memcpy(target.get(), source.data(), count);
            keep(target.get());
        };
    };
    const auto orient = [&](int value) {
        return [&, value] { keep(oriented(source, value)->data()); };
    };
    for (int value : {6, 8, 5, 7})
        compare("quarter turn, value " + std::to_string(value), orient(value), "memcpy",
                copyBytes(byteCount));
    for (int value : {2, 3, 4})
        compare("mirror, value " + std::to_string(value), orient(value), "memcpy",
                copyBytes(byteCount));
    compare(
        "copy", [&] { keep(source.copy()->data()); }, "memcpy", copyBytes(byteCount));
    compare(
        "copy to ARGB", [&] { keep(copied(source, BitmapLayout::argb)->data()); }, "memcpy",
        copyBytes(byteCount));
    const PixelRect window{100, 100, width - 200, height - 200};
    compare(
        "crop", [&] { keep(cropped(source, window)->data()); }, "memcpy",
        copyBytes(static_cast<std::size_t>(window.width * window.height * 4)));

    const auto copyFresh = [&] {
        void* const fresh = std::malloc(byteCount);
        std::memcpy(fresh, source.data(), byteCount);
        keep(fresh);
        std::free(fresh);
    };
    compare("quarter turn, value 6", orient(6), "malloc, memcpy, free", copyFresh);
    compare("mirror, value 2", orient(2), "malloc, memcpy, free", copyFresh);

    const cv::Mat picture(height, width, CV_8UC4, source.data());
    cv::Mat turned, mirrored;
    compare("quarter turn, value 6", orient(6), "OpenCV rotate (warm)",
            [&] { cv::rotate(picture, turned, cv::ROTATE_90_CLOCKWISE); });
    compare("mirror, value 2", orient(2), "OpenCV flip (warm)",
            [&] { cv::flip(picture, mirrored, 1); });
}
